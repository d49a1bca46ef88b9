#include "forms/screen.hpp"

#include <algorithm>
#include <stdexcept>

#include "forms/val.hpp"
#include "hydraulics/checked_math.hpp"

namespace cauce::forms {

namespace {
SourceOpener g_opener = nullptr;
}

void SetSourceOpener(SourceOpener opener) {
    g_opener = opener;
}
SourceOpener GetSourceOpener() {
    return g_opener;
}

const char* KindName(Kind kind) {
    // By Kind, in its order.
    static constexpr const char* kNames[] = {"TextBox", "Label", "CommandButton", "PictureBox", "Data"};
    return kNames[static_cast<int>(kind)];
}

Screen::Screen(std::string name, std::string title) : name_(std::move(name)), title_(std::move(title)) {}
Screen::~Screen() = default;

void Screen::Add(Control c) {
    index_[c.name] = controls_.size();
    controls_.push_back(std::move(c));
}

const Control* Screen::Find(std::string_view name) const {
    const auto it = index_.find(name);
    return it == index_.end() ? nullptr : &controls_[it->second];
}

const Control& Screen::Get(std::string_view name) const {
    const Control* c = Find(name);
    if (!c) throw std::out_of_range("control desconocido: " + std::string(name));
    return *c;
}

Control& Screen::Mut(std::string_view name) {
    return const_cast<Control&>(Get(name));
}

void Screen::Set(std::string_view name, std::string text) {
    Control& c = Mut(name);
    if (!filling_) ++c.writes;
    if (c.text == text) return;
    c.text = std::move(text);
    if (!filling_ && c.kind == Kind::TextBox && !c.column.empty() && source_ && source_->HasColumn(c.column))
        dirty_ = true;
}

void Screen::Type(std::string_view name, std::string text) {
    const Control& c = Get(name);
    if (c.kind != Kind::TextBox) throw std::invalid_argument(std::string(name) + " no es un cuadro de texto");
    Set(name, std::move(text));
}

double Screen::ValOf(std::string_view name) const {
    return Val(Text(name));
}

void Screen::OnClick(std::string name, std::function<void()> handler) {
    handlers_[std::move(name)] = std::move(handler);
}

std::optional<Fault> Screen::Click(std::string_view name) {
    const Control& c = Get(name);
    if (c.kind != Kind::CommandButton) throw std::invalid_argument(std::string(name) + " no es un botón");
    last_error_.reset();
    if (c.text.empty()) return std::nullopt;  // the caption is the button's enable state
    const auto it = handlers_.find(name);
    if (it == handlers_.end()) return std::nullopt;
    try {
        it->second();
    } catch (const Fault& f) {
        last_error_ = f;
    }
    return last_error_;
}

// --- record binding ---------------------------------------------------------------------------

int Screen::RecordCount() const {
    return source_ ? source_->RecordCount() : 0;
}

std::string Screen::RecordPosition() const {
    if (!source_) return "";
    return std::to_string(record_) + " de " + std::to_string(source_->RecordCount());
}

void Screen::OpenWorkbook(const std::string& path) {
    if (!HasData()) raise(FaultCode::NoWorkbook, "Esta pantalla no tiene libro de datos");
    if (!g_opener) raise(FaultCode::NoWorkbook, "No se pueden abrir libros en esta versión");
    // The record left is saved first: the workbook opened next may be the same file.
    if (source_ && dirty_) SavePending();
    source_ = g_opener(path, sheet_);  // throws Fault with the reason; the screen keeps its workbook then
    workbook_path_ = source_->Path();
    dirty_ = false;
    record_ = source_->RecordCount() > 0 ? 1 : 0;
    Fill();

    // A column the sheet lacks leaves its box unbound; the user is told which.
    std::vector<std::string> missing;
    for (const auto& c : controls_)
        if (c.kind == Kind::TextBox && !c.column.empty() && !source_->HasColumn(c.column) &&
            std::find(missing.begin(), missing.end(), c.column) == missing.end())
            missing.push_back(c.column);
    notice_.clear();
    save_note_.clear();
    if (!source_->ReadOnly().empty()) notice_ = source_->ReadOnly();
    if (!missing.empty()) {
        if (!notice_.empty()) notice_ += " ";
        std::string names;
        const std::size_t shown =
            missing.size() > 8 ? 6 : missing.size();  // a sheet of another kind lacks dozens
        for (std::size_t i = 0; i < shown; ++i) names += (names.empty() ? "\"" : ", \"") + missing[i] + "\"";
        if (shown < missing.size()) names += " y " + std::to_string(missing.size() - shown) + " más";
        notice_ += "La hoja \"" + sheet_ + "\" del libro \"" + workbook_path_ + "\" no tiene " +
                   (missing.size() == 1 ? "la columna " : "las columnas ") + names + ": " +
                   (missing.size() == 1 ? "su cuadro queda sin enlazar." : "sus cuadros quedan sin enlazar.");
    }
}

void Screen::Fill() {
    if (!source_) return;
    filling_ = true;
    filled_.clear();
    base_.clear();
    not_edits_.clear();
    for (auto& c : controls_) {
        if (c.kind != Kind::TextBox || c.column.empty() || !source_->HasColumn(c.column)) continue;
        c.text = record_ >= 1 ? source_->Get(record_, c.column) : "";  // a sheet without records shows none
        filled_[c.name] = c.text;
        base_[c.name] = c.text;
    }
    filling_ = false;
    dirty_ = false;
    version_ = source_->Version();
}

bool Screen::Resync() {
    if (!source_) return false;
    source_->Refresh();
    if (source_->Version() == version_) return false;
    version_ = source_->Version();
    if (record_ > source_->RecordCount()) record_ = source_->RecordCount();
    bool changed = false;
    filling_ = true;
    for (auto& c : controls_) {
        if (c.kind != Kind::TextBox || c.column.empty() || !source_->HasColumn(c.column)) continue;
        if (not_edits_.count(c.name)) continue;
        const std::string now = record_ >= 1 ? source_->Get(record_, c.column) : "";
        auto it = filled_.find(c.name);
        if (it == filled_.end()) it = filled_.emplace(c.name, c.text).first;
        // A box the user changed keeps the user's text; its old value stays the base the save checks.
        if (c.text == it->second && c.text != now) {
            c.text = now;
            changed = true;
        }
        if (c.text == now) {
            it->second = now;
            base_[c.name] = now;
        }
    }
    filling_ = false;
    dirty_ = false;
    for (const auto& [box, text] : filled_)
        if (Get(box).text != text) dirty_ = true;
    return changed;
}

std::string Screen::FormulaOf(std::string_view box) const {
    const Control* c = Find(box);
    if (!source_ || !c || c->kind != Kind::TextBox || c->column.empty() || record_ < 1 ||
        !source_->HasColumn(c->column))
        return "";
    return source_->Formula(record_, c->column);
}

void Screen::DiscardPending() {
    if (!source_) return;
    if (record_ > source_->RecordCount()) record_ = source_->RecordCount();
    Fill();
}

std::string Screen::ResolveConflict(bool keep_mine) {
    if (!source_) return "";
    source_->Resolve(keep_mine);
    // What another screen saved in this process counts as the base, or replaces the user's text.
    for (auto& c : controls_) {
        const auto it = filled_.find(c.name);
        if (it == filled_.end() || record_ < 1) continue;
        const std::string now = source_->Get(record_, c.column);
        if (c.text == it->second || now == it->second) continue;
        if (keep_mine)
            it->second = now;
        else
            c.text = it->second = now;
        base_[c.name] = now;
    }
    dirty_ = false;
    for (const auto& [box, text] : filled_)
        if (Get(box).text != text) dirty_ = true;
    version_ = source_->Version();
    return SavePending();
}

void Screen::NotAnEdit(std::string_view name) {
    const auto it = filled_.find(name);
    if (it == filled_.end()) return;
    it->second = Get(name).text;
    not_edits_.insert(std::string(name));
    dirty_ = false;
    for (const auto& [box, text] : filled_)
        if (Get(box).text != text) dirty_ = true;
}

void Screen::WriteRecord() {
    // Another screen on the same workbook may have saved this record since it was shown: a cell it
    // changed that this screen changed too is a conflict, and nothing is written.
    std::string clashes;
    for (const auto& c : controls_) {
        if (c.kind != Kind::TextBox || c.column.empty() || !source_->HasColumn(c.column)) continue;
        const auto it = filled_.find(c.name);
        if (it == filled_.end() || it->second == c.text) continue;
        // The cell as this screen last read it: a box a layout reset cleared (NotAnEdit) still has
        // the file's value as its base.
        const auto base = base_.find(c.name);
        const std::string& read = base == base_.end() ? it->second : base->second;
        const std::string now = source_->Get(record_, c.column);
        if (now != read && now != c.text)
            clashes += std::string(clashes.empty() ? "" : "; ") + "columna \"" + c.column +
                       "\": otra ventana guardó " + (now.empty() ? "vacía" : now) +
                       " y en esta se escribió " + (c.text.empty() ? "vacía" : c.text);
    }
    if (!clashes.empty())
        throw SaveRefused(SaveRefused::Why::Conflict,
                          "No se pudo guardar el libro \"" + workbook_path_ + "\": en la hoja \"" + sheet_ +
                              "\", registro " + std::to_string(record_) + ", " + clashes +
                              ". El valor de esta ventana queda pendiente hasta que elija cuál conservar.");
    for (const auto& c : controls_) {
        if (c.kind != Kind::TextBox || c.column.empty() || !source_->HasColumn(c.column)) continue;
        const auto it = filled_.find(c.name);
        if (it != filled_.end() && it->second == c.text) continue;
        source_->Set(record_, c.column, c.text);
    }
}

std::string Screen::SavePending() {
    save_note_.clear();
    if (!source_ || !dirty_ || record_ < 1) return save_note_;
    WriteRecord();
    std::map<std::string, std::string, std::less<>> before;
    for (const auto& [box, text] : filled_) before[box] = source_->Get(record_, Get(box).column);
    save_note_ = source_->Save();  // throws Fault; the record stays pending and the file as it was
    workbook_path_ = source_->Path();
    // The boxes keep what was typed, and show the cells others saved meanwhile (merged by the save).
    for (auto& [box, text] : filled_) {
        Control& c = Mut(box);
        text = c.text;
        if (not_edits_.count(box) || record_ > source_->RecordCount()) continue;
        const std::string now = source_->Get(record_, c.column);
        base_[box] = now;
        if (now != before[box]) c.text = text = now;
    }
    version_ = source_->Version();
    dirty_ = false;
    notice_ = save_note_;
    return save_note_;
}

void Screen::MoveTo(int record) {
    if (!source_) raise(FaultCode::NoWorkbook, "No hay un libro abierto en esta pantalla");
    const int count = source_->RecordCount();
    if (count == 0)
        raise(FaultCode::NoSuchRecord,
              "La hoja \"" + sheet_ + "\" del libro \"" + workbook_path_ + "\" no tiene registros");
    if (record < 1 || record > count)
        raise(FaultCode::NoSuchRecord, "El registro " + std::to_string(record) +
                                           " no existe: la hoja tiene " + std::to_string(count) +
                                           " registros");
    notice_.clear();
    SavePending();
    record_ = record;
    Fill();
}

}  // namespace cauce::forms
