#include "workbook/install.hpp"

#include "forms/binding.hpp"
#include "workbook/records.hpp"

namespace cauce::workbook {

void Install() {
    forms::SetSourceOpener(&OpenRecords);
}

}  // namespace cauce::workbook
