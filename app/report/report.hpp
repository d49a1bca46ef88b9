// The calculation report of a reach as an engineer hands it in: project data, methods and their
// constants, the data and results of each section, the profile table with the flow at each section,
// the standard-step profile beside the screen's with the warnings about it, the profile plot with both
// profiles and the cross-sections. The same report is written by "cauce informe" and by the
// desktop's Archivo > "Informe..." and "Imprimir...".
#pragma once

#include <QString>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/profile_chart.hpp"
#include "app/report/report_pages.hpp"
#include "app/section_sketch.hpp"
#include "app/standard_profile.hpp"
#include "reach/run.hpp"

class QPagedPaintDevice;
class QWidget;

namespace cauce::app {

// The project data printed at the head of every report; kept in the workbook's document properties
// so that they travel with the file.
struct ProjectFields {
    std::string proyecto, cliente, autor, reviso;
    bool Empty() const { return proyecto.empty() && cliente.empty() && autor.empty() && reviso.empty(); }
};
// The fields stored in the workbook (empty ones when it has none or cannot be read).
ProjectFields ReadProjectFields(const std::string& workbook);
// Stores the fields in the workbook. Throws Fault; the file is then as it was.
void WriteProjectFields(const std::string& workbook, const ProjectFields& fields);
// The fields given override the stored ones; empty ones keep them.
ProjectFields Merge(const ProjectFields& stored, const ProjectFields& given);

// What the report draws besides the numbers, caught while the reach runs.
struct ReachCapture {
    std::vector<std::optional<SectionSketch>> sketches;  // one per computed section, in order
    std::vector<ProfilePoint> profile;
    std::optional<StandardProfile> standard;  // the standard step beside the screen's profile
};
// The observer for reach::RunReach that fills the capture.
reach::SectionObserver Capture(ReachCapture& capture);

// Lays the report down the device's pages (a QPdfWriter or a QPrinter). Returns "" when done, else
// the Spanish reason.
std::string ComposeReachReport(QPagedPaintDevice& device, const reach::ReachResult& r, const ReachCapture& c,
                               const ProjectFields& project);
// Writes the report as a PDF at path, whole or not at all. Returns "" when done, else the reason.
std::string WriteReachReportPdf(const QString& path, const reach::ReachResult& r, const ReachCapture& c,
                                const ProjectFields& project);

// The one-page report of the case on a screen (Form1, Form5): the project data, the screen as it
// stands drawn from the widget, the methods it uses. Returns "" when done, else the reason.
std::string ComposeCaseReport(QPagedPaintDevice& device, QWidget& screen, const QString& form,
                              const QString& book, const ProjectFields& project);
std::string WriteCaseReportPdf(const QString& path, QWidget& screen, const QString& form, const QString& book,
                               const ProjectFields& project);

}  // namespace cauce::app
