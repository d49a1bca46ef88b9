// Builds without the desktop application cannot draw: the PNG and PDF options say so.
#include <iostream>

#include "cli/args.hpp"
#include "cli/graphics.hpp"

namespace cauce::cli {

bool CanDraw() {
    return false;
}

std::string CannotDraw() {
    return "esta versión de cauce se compiló sin la aplicación de escritorio (Qt), que dibuja los gráficos "
           "y los informes; compílela con -DCAUCE_GUI=ON";
}

std::string WriteCurvePng(const CurvePlot&, const std::string&) {
    return CannotDraw();
}

int WriteReport(const std::string&, const reach::ReachOptions&, const ProjectOptions&, const std::string&) {
    std::cerr << "cauce informe: " << CannotDraw() << "\n";
    return kExitData;
}

}  // namespace cauce::cli
