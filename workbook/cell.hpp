// A worksheet cell's value, and the text a text box shows for it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cauce::workbook {

enum class CellKind { Empty, Number, Text, Boolean, Error };

struct Cell {
    CellKind kind = CellKind::Empty;
    double number = 0;  // Number; Boolean as 0 or 1
    std::string text;   // Text; Error as its code ("#DIV/0!")

    static Cell Num(double x) { return {CellKind::Number, x, {}}; }
    static Cell Str(std::string s) { return {CellKind::Text, 0, std::move(s)}; }
    bool operator==(const Cell&) const = default;
};

// The shortest text that reads back to the same double: "0.015", "100", "-2.5", "1e-07".
std::string NumberText(double x);

// The number a text is when it is entirely one ("0.015", "-2.5", "1e3"); nothing otherwise: blanks,
// a comma, "inf", "nan" or any other character make it text.
std::optional<double> NumberFromText(std::string_view text);

// The cell as a text box shows it: numbers by NumberText, texts as they are, "VERDADERO"/"FALSO".
std::string DisplayText(const Cell& cell);

// What a text typed into a box becomes in the cell: a number, a text, or empty for "".
Cell CellFromText(const std::string& text);

}  // namespace cauce::workbook
