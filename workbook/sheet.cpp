#include "workbook/sheet.hpp"

#include <charconv>
#include <cmath>
#include <set>

#include "base/fault.hpp"
#include "workbook/formula.hpp"
#include "workbook/limits.hpp"
#include "workbook/ref.hpp"
#include "workbook/xml.hpp"

namespace cauce::workbook {

namespace {

std::optional<double> ParseNumber(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t' || s.front() == '\n' || s.front() == '\r'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\n' || s.back() == '\r'))
        s.remove_suffix(1);
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    double v = 0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
    if (s.empty() || ec != std::errc() || end != s.data() + s.size() || !std::isfinite(v))
        return std::nullopt;
    return v;
}

bool IsEmpty(const Cell& c) {
    return c.kind == CellKind::Empty || (c.kind == CellKind::Text && c.text.empty());
}

// Every attribute of that name: the parser lets a damaged file repeat one, and the first one read
// must not leave a second one behind to be read next time.
void RemoveAttributes(pugi::xml_node n, const char* name) {
    while (n.remove_attribute(name)) {
    }
}

void RemoveChildren(pugi::xml_node c, std::string_view local) {
    for (auto n = c.first_child(); n;) {
        auto next = n.next_sibling();
        if (n.type() == pugi::node_element && LocalName(n) == local) c.remove_child(n);
        n = next;
    }
}

}  // namespace

Sheet::Sheet(std::string name, std::string part, const std::string& xml,
             const std::vector<std::string>& strings, const std::string& file)
    : name_(std::move(name)), part_(std::move(part)), file_(file) {
    ParseXml(doc_, xml, file_, part_);
    auto damaged = [&](const std::string& why) {
        raise(FaultCode::FileDamaged, "El libro \"" + file_ + "\" está dañado: en la hoja \"" + name_ +
                                          "\", " + why + ". El archivo no se modificó.");
    };
    pugi::xml_node root = doc_.document_element();
    if (LocalName(root) != "worksheet") damaged("la parte " + part_ + " no es una hoja de cálculo");
    prefix_ = Prefix(root);
    data_ = Child(root, "sheetData");
    if (!data_) {
        // A sheet without cells: the place of sheetData is after these elements.
        pugi::xml_node after;
        for (const char* e : {"sheetPr", "dimension", "sheetViews", "sheetFormatPr", "cols"})
            if (auto n = Child(root, e)) after = n;
        data_ = after ? root.insert_child_after((prefix_ + "sheetData").c_str(), after)
                      : root.prepend_child((prefix_ + "sheetData").c_str());
    }

    int r = 0;
    for (auto row = data_.first_child(); row; row = row.next_sibling()) {
        if (row.type() != pugi::node_element || LocalName(row) != "row") continue;
        if (auto a = row.attribute("r")) {
            const auto v = ParseNumber(a.value());
            if (!v || *v < 1 || *v > kMaxRow || *v != std::floor(*v))
                damaged("una fila tiene el número \"" + std::string(a.value()) + "\"");
            r = static_cast<int>(*v);
        } else {
            ++r;
        }
        if (r > kMaxRow) damaged("hay más filas de las que admite una hoja");
        rows_.emplace(r, row);
        int col = 0;
        for (auto c = row.first_child(); c; c = c.next_sibling()) {
            if (c.type() != pugi::node_element || LocalName(c) != "c") continue;
            int cr = r;
            if (auto a = c.attribute("r")) {
                const auto ref = ParseRef(a.value());
                if (!ref) damaged("una celda tiene la referencia \"" + std::string(a.value()) + "\"");
                cr = ref->row;
                col = ref->col;
            } else {
                ++col;
            }
            if (col > kMaxColumn) damaged("hay más columnas de las que admite una hoja");
            const std::pair<int, int> key{cr, col};
            if (nodes_.count(key)) continue;  // a repeated cell: the first one counts
            nodes_.emplace(key, c);
            if (Child(c, "f")) formulas_[key] = true;

            const std::string t = c.attribute("t").value();
            const pugi::xml_node v = Child(c, "v");
            const std::string vt = v ? v.text().get() : "";
            Cell cell;
            if (t == "s") {
                if (v) {
                    const auto idx = ParseNumber(vt);
                    if (!idx || *idx < 0 || *idx >= static_cast<double>(strings.size()) ||
                        *idx != std::floor(*idx))
                        damaged("la celda " + RefName(cr, col) +
                                " remite a un texto compartido que no existe");
                    cell = Cell::Str(strings[static_cast<std::size_t>(*idx)]);
                }
            } else if (t == "inlineStr") {
                if (auto is = Child(c, "is")) cell = Cell::Str(ItemText(is));
            } else if (t == "str" || t == "d") {
                if (v) cell = Cell::Str(vt);
            } else if (t == "b") {
                if (v) cell = {CellKind::Boolean, ParseNumber(vt).value_or(0) != 0 ? 1.0 : 0.0, {}};
            } else if (t == "e") {
                if (v) cell = {CellKind::Error, 0, vt};
            } else if (v) {
                if (const auto x = ParseNumber(vt)) {
                    cell = Cell::Num(*x);
                } else {
                    cell = Cell::Str(vt);  // not a number after all: shown as the text it is
                }
            }
            if (!IsEmpty(cell)) values_.emplace(key, std::move(cell));
        }
    }
}

Cell Sheet::Get(int row, int col) const {
    const auto it = values_.find({row, col});
    return it == values_.end() ? Cell{} : it->second;
}

bool Sheet::IsFormula(int row, int col) const {
    return formulas_.count({row, col}) > 0;
}

std::string Sheet::FormulaText(int row, int col) const {
    if (!formulas_.count({row, col})) return "";
    const pugi::xml_node f = Child(nodes_.at({row, col}), "f");
    const std::string text = f.text().get();
    if (!text.empty() || std::string_view(f.attribute("t").value()) != "shared") return text;
    // A shared formula's other cells: the text of the cell that holds it, moved by the distance.
    const std::string si = f.attribute("si").value();
    for (const auto& [key, is_formula] : formulas_) {
        const pugi::xml_node g = Child(nodes_.at(key), "f");
        if (std::string_view(g.attribute("t").value()) == "shared" && si == g.attribute("si").value() &&
            g.attribute("ref") && *g.text().get())
            return ShiftFormula(g.text().get(), row - key.first, col - key.second);
    }
    return "";
}

void Sheet::NumberRows() {
    for (auto& [r, node] : rows_)
        if (!node.attribute("r")) node.prepend_attribute("r").set_value(std::to_string(r).c_str());
}

void Sheet::NumberCells(pugi::xml_node, int r) {
    for (auto it = nodes_.lower_bound({r, 0}); it != nodes_.end() && it->first.first == r; ++it)
        if (!it->second.attribute("r"))
            it->second.prepend_attribute("r").set_value(RefName(r, it->first.second).c_str());
}

pugi::xml_node Sheet::RowNode(int row) {
    if (const auto it = rows_.find(row); it != rows_.end()) return it->second;
    // Rows without a number are counted by position: number them all before one is put among them.
    NumberRows();
    const auto next = rows_.upper_bound(row);
    const std::string name = prefix_ + "row";
    pugi::xml_node node = next == rows_.end() ? data_.append_child(name.c_str())
                                              : data_.insert_child_before(name.c_str(), next->second);
    if (!node)
        raise(FaultCode::FileNotSaved, "No se pudo escribir la fila " + std::to_string(row) +
                                           " en la hoja \"" + name_ + "\" del libro \"" + file_ + "\".");
    node.append_attribute("r").set_value(std::to_string(row).c_str());
    rows_.emplace(row, node);
    return node;
}

pugi::xml_node Sheet::CellNode(int row, int col) {
    if (const auto it = nodes_.find({row, col}); it != nodes_.end()) return it->second;
    pugi::xml_node r = RowNode(row);
    NumberCells(r, row);
    RemoveAttributes(r, "spans");  // a hint of the cells' extent that the new cell may leave
    // Before the next cell of the row in this row element: a damaged sheet may hold a cell of this row
    // in another element (a reference to another row, a row number repeated), where it cannot go.
    pugi::xml_node before;
    for (auto it = nodes_.upper_bound({row, col}); it != nodes_.end() && it->first.first == row; ++it) {
        if (it->second.parent() == r) {
            before = it->second;
            break;
        }
    }
    if (!before) before = Child(r, "extLst");
    const std::string name = prefix_ + "c";
    pugi::xml_node c = before ? r.insert_child_before(name.c_str(), before) : r.append_child(name.c_str());
    if (!c)
        raise(FaultCode::FileNotSaved, "No se pudo escribir la celda " + RefName(row, col) +
                                           " en la hoja \"" + name_ + "\" del libro \"" + file_ + "\".");
    c.append_attribute("r").set_value(RefName(row, col).c_str());
    nodes_.emplace(std::pair{row, col}, c);
    return c;
}

void Sheet::DropFormula(int row, int col, pugi::xml_node c) {
    const pugi::xml_node f = Child(c, "f");
    // The cell holding a shared formula's text: the other cells of that formula get their own.
    if (std::string_view(f.attribute("t").value()) == "shared" && f.attribute("ref")) {
        const std::string si = f.attribute("si").value();
        const std::string text = f.text().get();
        for (const auto& [key, is_formula] : formulas_) {
            if (key == std::pair{row, col}) continue;
            pugi::xml_node g = Child(nodes_.at(key), "f");
            if (std::string_view(g.attribute("t").value()) != "shared" || si != g.attribute("si").value())
                continue;
            RemoveAttributes(g, "t");
            RemoveAttributes(g, "si");
            RemoveAttributes(g, "ref");
            g.text().set(ShiftFormula(text, key.first - row, key.second - col).c_str());
        }
    }
    RemoveChildren(c, "f");
    formulas_.erase({row, col});
    removed_formula_ = true;
}

void Sheet::GrowDimension(int row, int col) {
    pugi::xml_node dim = Child(doc_.document_element(), "dimension");
    if (!dim) return;
    const std::string ref = dim.attribute("ref").value();
    const auto colon = ref.find(':');
    const auto a = ParseRef(ref.substr(0, colon));
    const auto b = colon == std::string::npos ? a : ParseRef(ref.substr(colon + 1));
    if (!a || !b) return;
    const int r1 = std::min(a->row, row), c1 = std::min(a->col, col);
    const int r2 = std::max(b->row, row), c2 = std::max(b->col, col);
    if (r1 == a->row && c1 == a->col && r2 == b->row && c2 == b->col) return;
    dim.attribute("ref").set_value((RefName(r1, c1) + ":" + RefName(r2, c2)).c_str());
}

void Sheet::Set(int row, int col, const Cell& value) {
    if (row < 1 || row > kMaxRow || col < 1 || col > kMaxColumn)
        raise(FaultCode::RecordRefused, "La celda de la fila " + std::to_string(row) + ", columna " +
                                            std::to_string(col) + " está fuera de la hoja \"" + name_ +
                                            "\".");
    const std::pair<int, int> key{row, col};
    const bool exists = nodes_.count(key) > 0;
    if (!exists && IsEmpty(value)) return;
    pugi::xml_node c = CellNode(row, col);
    if (formulas_.count(key)) DropFormula(row, col, c);
    RemoveChildren(c, "v");
    RemoveChildren(c, "is");
    RemoveAttributes(c, "t");
    auto add = [&](const char* local) { return c.prepend_child((prefix_ + local).c_str()); };
    switch (IsEmpty(value) ? CellKind::Empty : value.kind) {
        case CellKind::Empty:
            // A cell left with its style keeps it; one with nothing else goes.
            if (!c.attribute("s") && !c.first_child()) {
                c.parent().remove_child(c);
                nodes_.erase(key);
            }
            break;
        case CellKind::Number:
            add("v").text().set(NumberText(value.number).c_str());
            break;
        case CellKind::Text: {
            c.append_attribute("t").set_value("inlineStr");
            pugi::xml_node t = add("is").append_child((prefix_ + "t").c_str());
            const std::string& s = value.text;
            if (s.front() == ' ' || s.back() == ' ' || s.find_first_of("\t\n") != std::string::npos)
                t.append_attribute("xml:space").set_value("preserve");
            t.text().set(EscapeItemText(s).c_str());
            break;
        }
        case CellKind::Boolean:
            c.append_attribute("t").set_value("b");
            add("v").text().set(value.number != 0 ? "1" : "0");
            break;
        case CellKind::Error:
            c.append_attribute("t").set_value("e");
            add("v").text().set(value.text.c_str());
            break;
    }
    if (IsEmpty(value)) {
        values_.erase(key);
    } else {
        values_[key] = value;
        GrowDimension(row, col);
    }
    modified_ = true;
}

std::string Sheet::Xml() {
    return WriteXml(doc_);
}

void Sheet::KeepResults(const Sheet& old) {
    for (const auto& [key, is_formula] : formulas_) {
        if (values_.count(key) ||
            old.FormulaText(key.first, key.second) != FormulaText(key.first, key.second))
            continue;
        const Cell c = old.Get(key.first, key.second);
        if (!IsEmpty(c)) values_[key] = c;
    }
}

std::string Sheet::XmlWithoutCachedResults() const {
    pugi::xml_document copy;
    copy.reset(doc_);
    // The copy's cells in the same order as the original's: walk both trees side by side.
    std::set<const void*> formula_cells;
    for (const auto& [key, is_formula] : formulas_) formula_cells.insert(nodes_.at(key).internal_object());
    std::vector<pugi::xml_node> strip;
    struct Walk {
        const std::set<const void*>& want;
        std::vector<pugi::xml_node>& out;
        void operator()(pugi::xml_node a, pugi::xml_node b) const {
            for (; a && b; a = a.next_sibling(), b = b.next_sibling()) {
                if (want.count(a.internal_object())) out.push_back(b);
                (*this)(a.first_child(), b.first_child());
            }
        }
    };
    Walk{formula_cells, strip}(doc_.first_child(), copy.first_child());
    for (pugi::xml_node c : strip) {
        RemoveChildren(c, "v");
        // The cell's type described the result that is no longer there.
        RemoveAttributes(c, "t");
    }
    return WriteXml(copy);
}

}  // namespace cauce::workbook
