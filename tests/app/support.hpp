// What the desktop tests share: an in-memory workbook behind Data1, and a prompter that records the
// messages instead of showing modal dialogs.
#pragma once

#include <QString>
#include <QStringList>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/dialogs.hpp"
#include "app/screen_view.hpp"
#include "forms/binding.hpp"

namespace cauce::apptest {

// Types text into a box as a person does (focus, select all, keys; Delete when the text is empty).
void Type(app::ScreenView& view, std::string_view box, const QString& text);
inline void Type(app::ScreenView* view, std::string_view box, const QString& text) {
    Type(*view, box, text);
}
inline QString Q(const std::string& s) {
    return QString::fromStdString(s);
}

// A sheet held in memory: a header row of columns and rows of texts.
struct MemorySheet {
    std::vector<std::string> columns;
    std::vector<std::map<std::string, std::string>> rows;
    int saves = 0;
    std::string fail_save;  // when set, Save throws a Fault with this message
};

// Workbooks by path; the opener of forms/ reads them from here. A path not listed cannot be opened.
std::map<std::string, std::shared_ptr<MemorySheet>>& Books();
void InstallMemoryBooks();

// The sheet from rows of column=value pairs.
std::shared_ptr<MemorySheet> MakeSheet(const std::vector<std::string>& columns,
                                       const std::vector<std::map<std::string, std::string>>& rows);

class RecordingPrompter : public app::Prompter {
  public:
    void Fault(QWidget*, const QString& message) override { faults << message; }
    void Note(QWidget*, const QString& message) override { notes << message; }
    bool Ask(QWidget*, const QString& question) override {
        questions << question;
        return answer;
    }
    QString WorkbookPath(QWidget*, const QString& start) override {
        starts << start;
        return path;
    }

    QStringList faults, notes, questions, starts;
    bool answer = false;
    QString path;
};

// The level table, roughness, slope and discharge of one Form2 section, as a row of its sheet.
std::map<std::string, std::string> SectionRow(int number, int count,
                                              const std::vector<std::pair<double, double>>& levels, double n,
                                              double slope, double discharge);

// The columns of the Form2 sheet.
std::vector<std::string> Form2Columns();

}  // namespace cauce::apptest
