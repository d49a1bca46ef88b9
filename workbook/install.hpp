// Connects the screens' record binding (forms/) to real workbooks.
#pragma once

namespace cauce::workbook {

// Makes forms::Screen::OpenWorkbook open .xlsx and .xls workbooks through this layer.
void Install();

}  // namespace cauce::workbook
