#include "support.hpp"

#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QtTest>
#include <charconv>

#include "forms/screen.hpp"
#include "hydraulics/checked_math.hpp"
#include "screens/profile_screen.hpp"

namespace cauce::apptest {

namespace {

class MemorySource : public forms::RecordSource {
  public:
    MemorySource(std::string path, std::shared_ptr<MemorySheet> sheet)
        : path_(std::move(path)), sheet_(std::move(sheet)) {}
    int RecordCount() const override { return static_cast<int>(sheet_->rows.size()); }
    bool HasColumn(const std::string& column) const override {
        for (const auto& c : sheet_->columns)
            if (c == column) return true;
        return false;
    }
    std::string Get(int record, const std::string& column) const override {
        const auto& row = sheet_->rows.at(static_cast<std::size_t>(record - 1));
        const auto it = row.find(column);
        return it == row.end() ? "" : it->second;
    }
    void Set(int record, const std::string& column, const std::string& text) override {
        sheet_->rows.at(static_cast<std::size_t>(record - 1))[column] = text;
    }
    std::string Save() override {
        if (!sheet_->fail_save.empty()) raise(FaultCode::FileNotSaved, sheet_->fail_save);
        ++sheet_->saves;
        return "";
    }
    std::string Path() const override { return path_; }

  private:
    std::string path_;
    std::shared_ptr<MemorySheet> sheet_;
};

std::unique_ptr<forms::RecordSource> OpenMemory(const std::string& path, const std::string&) {
    const auto it = Books().find(path);
    if (it == Books().end()) raise(FaultCode::FileNotFound, "No se puede abrir el libro \"" + path + "\"");
    return std::make_unique<MemorySource>(path, it->second);
}

std::string Text(double v) {
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, r.ptr);
}

}  // namespace

std::map<std::string, std::shared_ptr<MemorySheet>>& Books() {
    static std::map<std::string, std::shared_ptr<MemorySheet>> books;
    return books;
}

void Type(app::ScreenView& view, std::string_view box, const QString& text) {
    QLineEdit* edit = view.Box(box);
    QVERIFY2(edit, std::string(box).c_str());
    edit->setFocus();
    edit->selectAll();
    if (text.isEmpty())
        QTest::keyClick(edit, Qt::Key_Delete);
    else
        QTest::keyClicks(edit, text);
}

void Press(app::ScreenView& view, std::string_view button) {
    QTest::mouseClick(view.Button(button), Qt::LeftButton);
}

QAction* MenuAction(QMainWindow* w, const QString& menu, const QString& text) {
    for (QAction* m : w->menuBar()->actions())
        if (m->text().remove('&') == menu)
            for (QAction* a : m->menu()->actions())
                if (a->text().remove('&') == text || a->objectName() == text) return a;
    return nullptr;
}

void InstallMemoryBooks() {
    forms::SetSourceOpener(&OpenMemory);
}

std::vector<std::string> Form2Columns() {
    std::vector<std::string> c = {"SecId",  "No# secciones", "Rugosidad",   "Si",
                                  "Caudal", "Ancho Zi",      "Rugosidad Zi"};
    for (int j = 1; j <= 15; ++j) {
        for (const char* prefix : {"z", "t", "Abscisa", "Tipo", "Za", "V"})
            c.push_back(prefix + std::to_string(j));
    }
    return c;
}

std::map<std::string, std::string> SectionRow(int number, int count,
                                              const std::vector<std::pair<double, double>>& levels, double n,
                                              double slope, double discharge) {
    std::map<std::string, std::string> row;
    row["SecId"] = std::to_string(number);
    row["No# secciones"] = std::to_string(count);
    row["Rugosidad"] = Text(n);
    row["Si"] = Text(slope);
    row["Caudal"] = Text(discharge);
    for (std::size_t j = 0; j < levels.size(); ++j) {
        row["z" + std::to_string(j + 1)] = Text(levels[j].first);
        row["t" + std::to_string(j + 1)] = Text(levels[j].second);
    }
    return row;
}

std::shared_ptr<MemorySheet> ThreeSectionReach() {
    std::vector<std::map<std::string, std::string>> rows;
    for (int k = 1; k <= 3; ++k) {
        const double bed = 100.12 - 0.06 * k;
        auto row = SectionRow(k, 3, {{bed, 3.0}, {bed + 3.0, 3.0}}, 0.015, 0.001, 6.0);
        for (int j = 1; j <= 3; ++j) row["Abscisa" + std::to_string(j)] = std::to_string(60 * (j - 1));
        rows.push_back(row);
    }
    return std::make_shared<MemorySheet>(MemorySheet{Form2Columns(), rows, 0, {}});
}

void OnlyRios() {
    Books().clear();
    Books()["rios.xlsx"] = ThreeSectionReach();
}

std::vector<std::pair<std::string, std::string>> ReadmeRectangle() {
    namespace profile = screens::profile;
    return {{profile::box::SectionCount, "1"},   {profile::box::SectionNumber, "1"},
            {profile::LevelElevation(1), "100"}, {profile::LevelWidth(1), "2"},
            {profile::LevelElevation(2), "102"}, {profile::LevelWidth(2), "2"},
            {profile::box::Roughness, "0.015"},  {profile::box::Slope, "0.001"},
            {profile::box::Discharge, "2"}};
}

}  // namespace cauce::apptest
