// What the command line draws: the rating curve as a PNG and the calculation report of a reach as a
// PDF. They are drawn with Qt on its offscreen platform (no display needed) when the program is built
// with the desktop application; without it they explain that they are not available.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "reach/run.hpp"

namespace cauce::cli {

struct CurvePoint {
    double q = 0;   // m3/s
    double yn = 0;  // m
};

struct CurvePlot {
    std::string title;                                  // "Curva de gasto: Persecc, registro 3"
    std::string subtitle;                               // what the section is
    double q_from = 0, q_to = 0;                        // the range asked for, m3/s
    std::vector<CurvePoint> points;                     // the discharges with a normal depth
    std::vector<std::pair<std::string, double>> marks;  // reference discharges ("Q lleno", 51.7)
};

// Whether this build can write PNG and PDF files.
bool CanDraw();
// The reason it cannot, for the user.
std::string CannotDraw();

// Writes the plot to path (PNG). Returns "" when written, otherwise the Spanish reason; the file is
// then left as it was.
std::string WriteCurvePng(const CurvePlot& plot, const std::string& path);

// The project fields given on the command line ("" keeps what the workbook holds); store writes
// them into the workbook's document properties.
struct ProjectOptions {
    std::string proyecto, cliente, autor, reviso;
    bool store = false;
};

// cauce informe: runs the reach and writes its report to output (PDF). Returns the exit status.
int WriteReport(const std::string& book, const reach::ReachOptions& options, const ProjectOptions& project,
                const std::string& output);

}  // namespace cauce::cli
