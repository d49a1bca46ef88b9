// A screen: its controls, its click handlers and its record binding. Screens (Form1..Form5) derive
// from it, declare their controls in their constructor and register a handler per button.
//
// A click: a button whose caption is empty does nothing; otherwise its handler runs. A fault stops
// the handler where it arose, the screen keeps what was already written, and the fault's Spanish
// message is kept as the click's error.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/fault.hpp"
#include "forms/binding.hpp"
#include "forms/control.hpp"

namespace cauce::forms {

class Screen {
  public:
    Screen(std::string name, std::string title);
    virtual ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    const std::string& Name() const { return name_; }
    const std::string& Title() const { return title_; }  // window title
    const std::vector<Control>& Controls() const { return controls_; }
    const Control* Find(std::string_view name) const;
    const Control& Get(std::string_view name) const;  // throws std::out_of_range when absent

    // What the user does: type into a text box, click a button.
    void Type(std::string_view name, std::string text);
    // Runs the click; returns the fault when the handler stopped on one.
    std::optional<Fault> Click(std::string_view name);
    const std::optional<Fault>& LastError() const { return last_error_; }
    // "Salir" was pressed: the application ends after saving the pending record edits.
    bool Closed() const { return closed_; }

    // Record binding (screens with a Data1). Moving saves the record left when a bound box changed.
    bool HasData() const { return Find("Data1") != nullptr; }
    const std::string& Sheet() const { return sheet_; }
    void OpenWorkbook(const std::string& path);  // shows the first record
    void MoveTo(int record);                     // 1-based; saves the record left
    // The navigator's arrows: at either end of the sheet they stay on its first or last record.
    void MoveFirst() { MoveTo(1); }
    void MovePrevious() { MoveTo(record_ > 1 ? record_ - 1 : 1); }
    void MoveNext() { MoveTo(record_ < RecordCount() ? record_ + 1 : RecordCount()); }
    void MoveLast() { MoveTo(RecordCount()); }
    int Record() const { return record_; }
    int RecordCount() const;
    // "3 de 12": the record position the navigator shows beside Data1's caption ("" with no workbook).
    std::string RecordPosition() const;
    bool Dirty() const { return dirty_; }
    // Saves the current record's pending edits (closing the screen, "Salir"); returns the save's note.
    // Throws Fault; a SaveRefused leaves the edits pending (see ResolveConflict, DiscardPending).
    std::string SavePending();
    // After a save refused over a cell changed on both sides: keep_mine writes this screen's values
    // over the others', otherwise the boxes take the saved values; then saves what remains pending.
    std::string ResolveConflict(bool keep_mine);
    // Drops the pending edits of the record: the boxes show it as saved.
    void DiscardPending();
    // Shows what another screen or program saved in the current record, keeping the boxes the user
    // changed; true when a box changed.
    bool Resync();
    // The formula feeding a bound box ("=AI3"), "" when its cell holds none.
    std::string FormulaOf(std::string_view box) const;
    // The file behind Data1 (the .xlsx written beside a legacy .xls once it has been saved).
    const std::string& WorkbookPath() const { return workbook_path_; }
    const RecordSource* Source() const { return source_.get(); }
    // Message of the last workbook save, if it had one to give ("" otherwise).
    const std::string& SaveNote() const { return save_note_; }
    // What the last workbook operation has to tell the user, "" when nothing: the bound columns the
    // sheet lacks (their boxes stay unbound) after opening, the save's note after saving.
    const std::string& Notice() const { return notice_; }

  protected:
    void Add(Control c);
    void Set(std::string_view name, std::string text);  // a handler writes a box, label or picture
    const std::string& Text(std::string_view name) const { return Get(name).text; }
    double ValOf(std::string_view name) const;
    void OnClick(std::string name, std::function<void()> handler);
    void Close() { closed_ = true; }
    void BindSheet(std::string sheet) { sheet_ = std::move(sheet); }
    // The box's present text is not an edit of the record and is not written back: a layout reset
    // that clears the data boxes, or a result shown in a box that the record binds to another column,
    // must not overwrite the user's data when the record is left.
    void NotAnEdit(std::string_view name);

  private:
    Control& Mut(std::string_view name);
    void Fill();
    void WriteRecord();

    std::string name_, title_;
    std::vector<Control> controls_;
    std::map<std::string, std::size_t, std::less<>> index_;
    std::map<std::string, std::function<void()>, std::less<>> handlers_;
    std::optional<Fault> last_error_;
    bool closed_ = false;

    std::string sheet_;
    std::string workbook_path_;
    std::unique_ptr<RecordSource> source_;
    int record_ = 0;
    bool dirty_ = false;
    bool filling_ = false;
    std::string save_note_;
    std::string notice_;
    // Text of each bound box as the current record filled it: only boxes changed since are written
    // back, so that of two boxes bound to one column ("Abscisa9") the one edited wins.
    std::map<std::string, std::string, std::less<>> filled_;
    // Text of each bound box as last read from the record: the base a save compares the file with.
    std::map<std::string, std::string, std::less<>> base_;
    std::set<std::string, std::less<>> not_edits_;  // boxes NotAnEdit marked since the record was shown
    std::uint64_t version_ = 0;                     // the source's Version when the boxes were filled
};

}  // namespace cauce::forms
