// The program's desktop entry point: "cauce" with no arguments opens Form2 on the user's workbook.
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

#include "app/desktop.hpp"
#include "app/dialogs.hpp"
#include "app/screen_view.hpp"
#include "app/screen_window.hpp"
#include "app/workbook_link.hpp"

namespace cauce::cli {
int RunDesktop(int argc, char** argv);
}

namespace cauce::app {

namespace {

// Kilobytes of a line of /proc/self/status ("VmRSS:    45120 kB"); 0 where there is no such file.
long StatusKilobytes(const char* key) {
    QFile f(QStringLiteral("/proc/self/status"));
    if (!f.open(QIODevice::ReadOnly)) return 0;
    const QByteArray prefix = QByteArray(key) + ':';
    for (const QByteArray& line : f.readAll().split('\n'))
        if (line.startsWith(prefix)) return line.mid(prefix.size()).trimmed().split(' ').value(0).toLong();
    return 0;
}

// With CAUCE_MEASURE_STARTUP set, the program ends right after the first window has been painted and
// prints how long that took and the memory it holds (bench/startup.sh).
class FirstPaintProbe : public QObject {
  public:
    explicit FirstPaintProbe(const QElapsedTimer& since) : since_(since) {}

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint && !done_) {
            done_ = true;
            // Let this paint finish and reach the screen first.
            QTimer::singleShot(0, [this] {
                std::printf("arranque_ms=%lld rss_kb=%ld rss_max_kb=%ld\n",
                            static_cast<long long>(since_.elapsed()), StatusKilobytes("VmRSS"),
                            StatusKilobytes("VmHWM"));
                std::fflush(stdout);
                QCoreApplication::exit(0);
            });
        }
        return false;
    }

  private:
    const QElapsedTimer& since_;
    bool done_ = false;
};

}  // namespace

}  // namespace cauce::app

int cauce::cli::RunDesktop(int argc, char** argv) {
    using namespace cauce::app;
    QElapsedTimer since;
    since.start();
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Cauce"));
    LoadSpanishTranslation();
    InstallWorkbooks();
    DialogPrompter prompter;
    Desktop desktop(prompter, [](std::string_view screen) { return DefaultWorkbook(screen); });
    ScreenWindow* first = desktop.Open("Form2");
    if (!first) return 1;
    FirstPaintProbe probe(since);
    if (std::getenv("CAUCE_MEASURE_STARTUP")) first->View()->installEventFilter(&probe);
    return application.exec();
}
