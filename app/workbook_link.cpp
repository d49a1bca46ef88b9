#include "app/workbook_link.hpp"

#ifdef CAUCE_WITH_WORKBOOK
#include "workbook/data_folder.hpp"
#include "workbook/install.hpp"
#endif

namespace cauce::app {

#ifdef CAUCE_WITH_WORKBOOK

void InstallWorkbooks() {
    workbook::Install();
}

std::string DefaultWorkbook(std::string_view screen) {
    return workbook::DefaultWorkbook(screen);
}

#else

void InstallWorkbooks() {}

std::string DefaultWorkbook(std::string_view) {
    return "";
}

#endif

}  // namespace cauce::app
