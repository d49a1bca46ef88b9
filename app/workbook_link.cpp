#include "app/workbook_link.hpp"

namespace cauce::app {

void InstallWorkbooks() {}

std::string DefaultWorkbook(std::string_view) { return ""; }

}  // namespace cauce::app
