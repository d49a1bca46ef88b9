// Plain-text tables for the terminal: a heading row, columns as wide as their widest cell, numbers
// right-aligned and text left-aligned. Widths count characters, not bytes (accents are one).
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace cauce::cli {

class TextTable {
  public:
    explicit TextTable(std::vector<std::string> headings);
    void Row(std::vector<std::string> cells);
    void Print(std::ostream& out, const std::string& indent = "  ") const;

  private:
    std::vector<std::string> headings_;
    std::vector<std::vector<std::string>> rows_;
};

// Characters of a UTF-8 text.
std::size_t Width(const std::string& text);

}  // namespace cauce::cli
