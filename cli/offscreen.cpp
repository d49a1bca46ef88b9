#include "cli/offscreen.hpp"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <cstdio>
#include <memory>

#include "platform/platform.hpp"

namespace cauce::cli {

namespace {

// Qt's notes about the offscreen platform (no runtime folder, no window hints) mean nothing to the
// user of a command; its critical messages still get through.
void QuietMessages(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "cauce: Qt: %s\n", qPrintable(message));
}

}  // namespace

std::unique_ptr<QApplication> StartOffscreen() {
    if (QCoreApplication::instance()) return nullptr;
    // The commands never show a window: the offscreen platform draws the same without a display, and
    // a DISPLAY that points nowhere cannot stop them. A platform the user chose is respected.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(QuietMessages);
    static int argc = 1;
    static char name[] = "cauce";
    static char* argv[] = {name, nullptr};
    auto app = std::make_unique<QApplication>(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Cauce"));
    // Without shaping Latin text has no ligatures: "fi" stays two letters in a PDF's text.
    QFont font(QStringLiteral("DejaVu Sans"), 9);
    font.setStyleStrategy(QFont::PreferNoShaping);
    QApplication::setFont(font);
    return app;
}

std::string WriteAtomically(const std::string& path, const std::string& what,
                            const std::function<std::string(const QString& temporary)>& write) {
    const QString target = QString::fromStdString(path);
    const QFileInfo info(target);
    if (info.exists() && info.isDir()) return "\"" + path + "\" es una carpeta, no un archivo";
    const QString folder = info.absolutePath();
    if (!QFileInfo(folder).isDir())
        return "no existe la carpeta \"" + folder.toStdString() + "\" para " + what;
    const QString temporary = folder + QStringLiteral("/.") + info.fileName() +
                              QStringLiteral(".%1.tmp").arg(QCoreApplication::applicationPid());
    const std::string why = write(temporary);
    if (!why.empty()) {
        QFile::remove(temporary);
        return why;
    }
    try {
        platform::MoveOver(temporary.toStdU16String(), target.toStdU16String());
    } catch (const platform::Error& e) {
        QFile::remove(temporary);
        return "no se pudo escribir " + what + " en \"" + path + "\": " + e.Reason();
    }
    return "";
}

}  // namespace cauce::cli
