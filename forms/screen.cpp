#include "forms/screen.hpp"

#include <stdexcept>

#include "forms/val.hpp"
#include "hydraulics/fault.hpp"

namespace cauce::forms {

namespace {
SourceOpener g_opener = nullptr;
}

void SetSourceOpener(SourceOpener opener) { g_opener = opener; }
SourceOpener GetSourceOpener() { return g_opener; }

const char* KindName(Kind kind) {
    switch (kind) {
        case Kind::TextBox: return "TextBox";
        case Kind::Label: return "Label";
        case Kind::CommandButton: return "CommandButton";
        case Kind::PictureBox: return "PictureBox";
        case Kind::Data: return "Data";
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

Control& Screen::Mut(std::string_view name) { return const_cast<Control&>(Get(name)); }

void Screen::Set(std::string_view name, std::string text) {
    Control& c = Mut(name);
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

double Screen::ValOf(std::string_view name) const { return Val(Text(name)); }

void Screen::OnClick(std::string name, std::function<void()> handler) { handlers_[std::move(name)] = std::move(handler); }

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

int Screen::RecordCount() const { return source_ ? source_->RecordCount() : 0; }

void Screen::OpenWorkbook(const std::string& path) {
    if (!HasData()) raise("Esta pantalla no tiene libro de datos");
    if (!g_opener) raise("No se pueden abrir libros en esta versión");
    auto source = g_opener(path, sheet_);  // throws Fault with the reason; nothing changes then
    if (source_ && dirty_) SavePending();
    source_ = std::move(source);
    workbook_path_ = path;
    dirty_ = false;
    record_ = source_->RecordCount() > 0 ? 1 : 0;
    Fill();
}

void Screen::Fill() {
    if (!source_ || record_ < 1) return;
    filling_ = true;
    for (auto& c : controls_)
        if (c.kind == Kind::TextBox && !c.column.empty() && source_->HasColumn(c.column))
            c.text = source_->Get(record_, c.column);
    filling_ = false;
    dirty_ = false;
}

void Screen::WriteRecord() {
    for (const auto& c : controls_)
        if (c.kind == Kind::TextBox && !c.column.empty() && source_->HasColumn(c.column))
            source_->Set(record_, c.column, c.text);
}

std::string Screen::SavePending() {
    save_note_.clear();
    if (!source_ || !dirty_ || record_ < 1) return save_note_;
    WriteRecord();
    save_note_ = source_->Save();
    dirty_ = false;
    return save_note_;
}

void Screen::MoveTo(int record) {
    if (!source_) raise("No hay un libro abierto en esta pantalla");
    const int count = source_->RecordCount();
    if (record < 1 || record > count)
        raise("El registro " + std::to_string(record) + " no existe: la hoja tiene " + std::to_string(count) +
              " registros");
    SavePending();
    record_ = record;
    Fill();
}

}  // namespace cauce::forms
