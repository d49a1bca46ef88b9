// Ground points of a survey read from text: a CSV or text file, a spreadsheet range, pasted text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "hydraulics/survey/survey.hpp"

namespace cauce::forms {

// One point per line, abscissa then elevation, left to right. The two numbers are separated by a
// tab, ";", "," or blanks; the decimal separator is the point, or the comma where the comma does
// not separate the numbers ("12,5;100,3", "12,5<tab>100,3", "12.5,100.3"). Blank lines are skipped,
// and a first line that is not numbers (a header, "abscisa;cota") too; cells left empty at the end
// of a row, as a spreadsheet copies them, do not count. Each point keeps its line number.
// Raises a Fault naming the line ("Línea 4: ...", or with noun "Fila", "Fila 4: ...") when a line is
// not two numbers.
std::vector<survey::Point> ReadSurveyPoints(std::string_view text, std::string_view noun = "Línea");

}  // namespace cauce::forms
