#include "forms/screen.hpp"

#include <algorithm>
#include <stdexcept>

#include "forms/val.hpp"
#include "hydraulics/fault.hpp"

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
    switch (kind) {
        case Kind::TextBox:
            return "TextBox";
        case Kind::Label:
            return "Label";
        case Kind::CommandButton:
            return "CommandButton";
        case Kind::PictureBox:
            return "PictureBox";
        case Kind::Data:
            return "Data";
    }
    return "";
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

std::optional<std::string> Screen::Click(std::string_view name) {
    const Control& c = Get(name);
    if (c.kind != Kind::CommandButton) throw std::invalid_argument(std::string(name) + " no es un botón");
    last_error_.reset();
    if (c.text.empty()) return std::nullopt;  // the caption is the button's enable state
    const auto it = handlers_.find(name);
    if (it == handlers_.end()) return std::nullopt;
    try {
        it->second();
    } catch (const Fault& f) {
        last_error_ = f.what();
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
    if (!HasData()) raise("Esta pantalla no tiene libro de datos");
    if (!g_opener) raise("No se pueden abrir libros en esta versión");
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
    if (!missing.empty()) {
        std::string names;
        const std::size_t shown =
            missing.size() > 8 ? 6 : missing.size();  // a sheet of another kind lacks dozens
        for (std::size_t i = 0; i < shown; ++i) names += (names.empty() ? "\"" : ", \"") + missing[i] + "\"";
        if (shown < missing.size()) names += " y " + std::to_string(missing.size() - shown) + " más";
        notice_ = "La hoja \"" + sheet_ + "\" del libro \"" + workbook_path_ + "\" no tiene " +
                  (missing.size() == 1 ? "la columna " : "las columnas ") + names + ": " +
                  (missing.size() == 1 ? "su cuadro queda sin enlazar." : "sus cuadros quedan sin enlazar.");
    }
}

void Screen::Fill() {
    if (!source_) return;
    filling_ = true;
    filled_.clear();
    for (auto& c : controls_) {
        if (c.kind != Kind::TextBox || c.column.empty() || !source_->HasColumn(c.column)) continue;
        c.text = record_ >= 1 ? source_->Get(record_, c.column) : "";  // a sheet without records shows none
        filled_[c.name] = c.text;
    }
    filling_ = false;
    dirty_ = false;
}

void Screen::NotAnEdit(std::string_view name) {
    const auto it = filled_.find(name);
    if (it == filled_.end()) return;
    it->second = Get(name).text;
    dirty_ = false;
    for (const auto& [box, text] : filled_)
        if (Get(box).text != text) dirty_ = true;
}

void Screen::WriteRecord() {
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
    save_note_ = source_->Save();  // throws Fault; the record stays pending and the file as it was
    workbook_path_ = source_->Path();
    for (const auto& c : controls_)
        if (filled_.count(c.name)) filled_[c.name] = c.text;
    dirty_ = false;
    notice_ = save_note_;
    return save_note_;
}

void Screen::MoveTo(int record) {
    if (!source_) raise("No hay un libro abierto en esta pantalla");
    const int count = source_->RecordCount();
    if (count == 0)
        raise("La hoja \"" + sheet_ + "\" del libro \"" + workbook_path_ + "\" no tiene registros");
    if (record < 1 || record > count)
        raise("El registro " + std::to_string(record) + " no existe: la hoja tiene " + std::to_string(count) +
              " registros");
    notice_.clear();
    SavePending();
    record_ = record;
    Fill();
}

}  // namespace cauce::forms
