// Entry point used when the program is built without the desktop application.
#include <iostream>

#include "cli/commands.hpp"

namespace cauce::cli {

int RunDesktop(int, char**) {
    std::cerr << "cauce: esta versión se compiló sin la aplicación de escritorio; use \"cauce guion\" "
                 "(cauce --help)\n";
    return 1;
}

}  // namespace cauce::cli
