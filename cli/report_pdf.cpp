// cauce informe with the desktop built: the reach run as "cauce perfil" runs it, then the report the
// desktop writes (app/report, with the standard step beside the screen's profile), drawn on Qt's
// offscreen platform.
#include <QApplication>
#include <iostream>

#include "app/report/report.hpp"
#include "cli/args.hpp"
#include "cli/graphics.hpp"
#include "cli/offscreen.hpp"
#include "cli/progress.hpp"
#include "hydraulics/checked_math.hpp"

namespace cauce::cli {

using namespace reach;

int WriteReport(const std::string& book, const ReachOptions& options, const ProjectOptions& given,
                const std::string& output) {
    const auto application = StartOffscreen();
    Progress progress("informe", 3);
    progress.Step(1, "cálculo del tramo");
    app::ReachCapture captured;
    const ReachResult r = RunReach(book, options, app::Capture(captured));
    if (!r.Ok()) {
        progress.Clear();
        std::cerr << "cauce informe: " << book << ": " << r.error << "\n";
        return kExitData;
    }
    const std::string file = r.file.empty() ? r.path : r.file;
    const app::ProjectFields project =
        app::Merge(app::ReadProjectFields(file), {given.proyecto, given.cliente, given.autor, given.reviso});
    if (given.store) {
        try {
            app::WriteProjectFields(file, project);
        } catch (const Fault& f) {
            progress.Clear();
            std::cerr << "cauce informe: los datos del proyecto no se guardaron: " << f.what() << "\n";
            return kExitData;
        }
    }
    progress.Step(2, "dibujos y tablas");
    const std::string why = WriteAtomically(output, "el informe", [&](const QString& temporary) {
        return app::WriteReachReportPdf(temporary, r, captured, project);
    });
    progress.Clear();
    if (!why.empty()) {
        std::cerr << "cauce informe: " << why << "\n";
        return kExitData;
    }
    for (const auto& s : r.sections)
        if (s.faulty)
            std::cerr << "cauce informe: aviso: registro " << s.record << " (sección " << s.section
                      << "): " << (s.error.empty() ? s.notice : s.error) << "\n";
    std::cout << "Informe escrito en " << output << " (" << r.sections.size() << " secciones)\n";
    return kExitOk;
}

}  // namespace cauce::cli
