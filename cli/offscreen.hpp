// The Qt application behind the command line's drawings: created on first use, on Qt's offscreen
// platform, so that PNG and PDF files are drawn without a display or a window.
#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <string>

class QApplication;

namespace cauce::cli {

// Creates the application; the caller keeps it while it draws and ends it before returning (Qt's
// objects must go before it, and it must go before the program's static objects). Returns nullptr
// when an application already exists.
std::unique_ptr<QApplication> StartOffscreen();

// Replaces path with the file that write() produced at a temporary name in the same folder, so that
// a failure never leaves a half-written file. write() gets the temporary name and returns "" when it
// wrote it, else why not. Returns "" when done, else the Spanish reason.
std::string WriteAtomically(const std::string& path, const std::string& what,
                            const std::function<std::string(const QString& temporary)>& write);

}  // namespace cauce::cli
