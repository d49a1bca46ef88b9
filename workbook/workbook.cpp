#include "workbook/workbook.hpp"

#include "base/fault.hpp"
#include "forms/binding.hpp"
#include "platform/platform.hpp"
#include "workbook/formula.hpp"
#include "workbook/legacy.hpp"
#include "workbook/limits.hpp"
#include "workbook/lock_file.hpp"
#include "workbook/package.hpp"
#include "workbook/ref.hpp"
#include "workbook/save_file.hpp"
#include "workbook/xml.hpp"

namespace cauce::workbook {

namespace fs = std::filesystem;

namespace {

bool EndsWith(std::string_view s, std::string_view tail) {
    return s.size() >= tail.size() && s.substr(s.size() - tail.size()) == tail;
}

// A relationship's target as a part name: relative to the source part's folder, or from the root.
std::string ResolveTarget(const std::string& folder, std::string target) {
    std::string path = !target.empty() && target[0] == '/' ? target.substr(1) : folder + target;
    std::vector<std::string> out;
    std::size_t start = 0;
    while (start <= path.size()) {
        const auto slash = path.find('/', start);
        const std::string seg =
            path.substr(start, slash == std::string::npos ? std::string::npos : slash - start);
        if (seg == "..") {
            if (!out.empty()) out.pop_back();
        } else if (!seg.empty() && seg != ".") {
            out.push_back(seg);
        }
        if (slash == std::string::npos) break;
        start = slash + 1;
    }
    std::string joined;
    for (const auto& s : out) joined += (joined.empty() ? "" : "/") + s;
    return joined;
}

std::string Folder(const std::string& part) {
    const auto slash = part.rfind('/');
    return slash == std::string::npos ? "" : part.substr(0, slash + 1);
}

std::string RelsOf(const std::string& part) {
    const auto slash = part.rfind('/');
    return slash == std::string::npos
               ? "_rels/" + part + ".rels"
               : part.substr(0, slash + 1) + "_rels/" + part.substr(slash + 1) + ".rels";
}

struct Rel {
    std::string id, type, target;
};

std::vector<Rel> ReadRels(pugi::xml_document& doc, const std::string& folder) {
    std::vector<Rel> rels;
    for (auto r = doc.document_element().first_child(); r; r = r.next_sibling()) {
        if (r.type() != pugi::node_element || LocalName(r) != "Relationship") continue;
        if (std::string_view(r.attribute("TargetMode").value()) == "External") continue;
        rels.push_back({r.attribute("Id").value(), r.attribute("Type").value(),
                        ResolveTarget(folder, r.attribute("Target").value())});
    }
    return rels;
}

}  // namespace

struct Workbook::State {
    std::unique_ptr<Package> pkg;
    std::string file, book_part, book_rels_part, calc_chain_part, calc_chain_id;
    pugi::xml_document book, book_rels;
    std::vector<std::unique_ptr<Sheet>> sheets;
};

std::unique_ptr<Workbook::State> Workbook::Load(std::string bytes, std::string file) {
    auto s = std::make_unique<State>();
    s->file = file;
    s->pkg = std::make_unique<Package>(std::move(bytes), file);
    Package& pkg = *s->pkg;
    auto not_a_book = [&] {
        raise(FaultCode::FileNotFound, "\"" + file +
                                           "\" no es un libro de Excel: es un archivo zip sin hoja de "
                                           "cálculo. El archivo no se modificó.");
    };

    // The package's relationships name its main part; xl/workbook.xml is where it always is.
    if (!pkg.Find("_rels/.rels").empty()) {
        pugi::xml_document rels;
        ParseXml(rels, pkg.Read("_rels/.rels"), file, "_rels/.rels");
        for (const auto& r : ReadRels(rels, ""))
            if (EndsWith(r.type, "/officeDocument")) s->book_part = r.target;
    }
    if (s->book_part.empty() || pkg.Find(s->book_part).empty()) s->book_part = "xl/workbook.xml";
    if (pkg.Find(s->book_part).empty()) not_a_book();
    s->book_part = pkg.Find(s->book_part);
    ParseXml(s->book, pkg.Read(s->book_part), file, s->book_part);
    if (LocalName(s->book.document_element()) != "workbook") not_a_book();

    std::vector<Rel> rels;
    s->book_rels_part = RelsOf(s->book_part);
    if (!pkg.Find(s->book_rels_part).empty()) {
        s->book_rels_part = pkg.Find(s->book_rels_part);
        ParseXml(s->book_rels, pkg.Read(s->book_rels_part), file, s->book_rels_part);
        rels = ReadRels(s->book_rels, Folder(s->book_part));
    }
    std::vector<std::string> strings;
    for (const auto& r : rels) {
        if (EndsWith(r.type, "/sharedStrings") && !pkg.Find(r.target).empty()) {
            pugi::xml_document sst;
            const std::string part = pkg.Find(r.target);
            ParseXml(sst, pkg.Read(part), file, part);
            for (auto si = sst.document_element().first_child(); si; si = si.next_sibling())
                if (si.type() == pugi::node_element && LocalName(si) == "si") strings.push_back(ItemText(si));
        } else if (EndsWith(r.type, "/calcChain")) {
            s->calc_chain_part = pkg.Find(r.target);
            s->calc_chain_id = r.id;
        }
    }

    for (auto sh = Child(Child(s->book.document_element(), "sheets"), "sheet"); sh; sh = sh.next_sibling()) {
        if (sh.type() != pugi::node_element || LocalName(sh) != "sheet") continue;
        const std::string name = sh.attribute("name").value();
        const std::string id = Attr(sh, "id").value();
        const Rel* rel = nullptr;
        for (const auto& r : rels)
            if (r.id == id) rel = &r;
        if (!rel)
            raise(FaultCode::FileDamaged,
                  "El libro \"" + file + "\" está dañado: la hoja \"" + name +
                      "\" no tiene su parte en el paquete. El archivo no se modificó.");
        if (!EndsWith(rel->type, "/worksheet")) continue;  // chart and dialog sheets hold no cells
        const std::string part = pkg.Find(rel->target);
        if (part.empty())
            raise(FaultCode::FileDamaged, "El libro \"" + file + "\" está dañado: falta la parte " +
                                              rel->target + " de la hoja \"" + name +
                                              "\". El archivo no se modificó.");
        s->sheets.push_back(std::make_unique<Sheet>(name, part, pkg.Read(part), strings, file));
    }
    return s;
}

Workbook::Workbook(std::unique_ptr<State> s) : s_(std::move(s)) {
    path_ = s_->file;
}
Workbook::~Workbook() = default;

std::unique_ptr<Workbook> Workbook::FromBytes(std::string bytes, std::string file) {
    return std::unique_ptr<Workbook>(new Workbook(Load(std::move(bytes), std::move(file))));
}

FileIdentity IdentityOf(const fs::path& path) {
    try {
        return platform::Identify(path);
    } catch (const platform::Error&) {
        return {};  // cannot be looked at: as if absent; reading it then says why
    }
}

std::string ReadWorkbookFile(const fs::path& path) {
    const std::string file = path.string();
    auto fail = [&](const std::string& why) {
        raise(FaultCode::FileDamaged, why + " El archivo no se modificó.");
    };
    platform::FileIdentity st;
    try {
        st = platform::Identify(path);
    } catch (const platform::Error& e) {
        fail("No se puede abrir el libro \"" + file + "\": " + e.Reason() + ".");
    }
    if (!st.Exists()) raise(FaultCode::FileNotFound, "No se encuentra el libro \"" + file + "\".");
    if (st.kind == platform::FileKind::Folder)
        raise(FaultCode::FileNotFound, "\"" + file + "\" es una carpeta, no un libro de Excel.");
    if (st.kind != platform::FileKind::Regular)
        raise(FaultCode::FileNotFound, "\"" + file + "\" no es un archivo común, no es un libro de Excel.");
    if (static_cast<std::uint64_t>(st.size) > kMaxFileBytes)
        fail("El libro \"" + file + "\" es demasiado grande (" + std::to_string(st.size >> 20) +
             " MB); Cauce lee libros de hasta " + std::to_string(kMaxFileBytes >> 20) + " MB.");

    std::string bytes;
    try {
        bytes = platform::ReadFile(path, kMaxFileBytes);
    } catch (const platform::Error& e) {
        fail("No se puede leer el libro \"" + file + "\": " +
             (e.GetCause() == platform::Cause::Permission ? std::string("no hay permiso de lectura")
                                                          : e.Reason()) +
             ".");
    }
    if (bytes.size() > kMaxFileBytes) fail("El libro \"" + file + "\" es demasiado grande.");
    return bytes;
}

namespace {

const char kZip[] = "PK\x03\x04";
const char kCompound[] = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";

}  // namespace

std::unique_ptr<Workbook> Workbook::Open(const fs::path& path) {
    const std::string file = path.string();
    // The identity first: a save by another program while the file is read shows at the next save.
    FileIdentity id = IdentityOf(path);
    std::string bytes = ReadWorkbookFile(path);
    std::unique_ptr<Workbook> wb;
    if (bytes.empty()) {
        raise(FaultCode::FileNotFound,
              "\"" + file + "\" está vacío: no es un libro de Excel. El archivo no se modificó.");
    } else if (bytes.compare(0, 4, kZip, 4) == 0) {
        wb = FromBytes(std::move(bytes), file);
    } else if (bytes.compare(0, 8, kCompound, 8) == 0) {
        // The old binary format (an .xlsx protected with a password is such a file too, and freexl says so).
        LegacyBook legacy = ReadLegacyBook(path);
        wb.reset(new Workbook(Load(std::move(legacy.package), file)));
        wb->legacy_ = true;
        wb->legacy_omitted_ = std::move(legacy.omitted);
    } else {
        raise(FaultCode::FileNotFound,
              "\"" + file + "\" no es un libro de Excel (.xlsx o .xls). El archivo no se modificó.");
    }
    wb->on_disk_ = true;
    wb->disk_ = id;
    return wb;
}

std::vector<std::string> Workbook::SheetNames() const {
    std::vector<std::string> names;
    for (const auto& sh : s_->sheets) names.push_back(sh->Name());
    return names;
}

Sheet* Workbook::FindSheet(std::string_view name) {
    for (const auto& sh : s_->sheets)
        if (sh->Name() == name) return sh.get();
    return nullptr;
}

bool Workbook::Modified() const {
    for (const auto& sh : s_->sheets)
        if (sh->Modified()) return true;
    return false;
}

std::string Workbook::Bytes() {
    if (!Modified()) return s_->pkg->Bytes();
    std::map<std::string, std::string> replaced;
    std::set<std::string> removed;
    bool formulas = false, removed_formula = false;
    for (const auto& sh : s_->sheets) {
        formulas = formulas || sh->HasFormulas();
        removed_formula = removed_formula || sh->RemovedFormula();
        // Cached results may now be stale, and some programs show them rather than compute: a
        // formula without one is computed on opening by every spreadsheet program.
        if (sh->HasFormulas())
            replaced[sh->Part()] = sh->XmlWithoutCachedResults();
        else if (sh->Modified())
            replaced[sh->Part()] = sh->Xml();
    }
    pugi::xml_node book = s_->book.document_element();
    if (formulas) {
        // Cached results of formulas may now be stale: spreadsheet programs recompute on opening.
        pugi::xml_node calc = Child(book, "calcPr");
        if (!calc) {
            pugi::xml_node before;
            for (auto n = book.first_child(); n && !before; n = n.next_sibling()) {
                const std::string_view l = LocalName(n);
                for (const char* later :
                     {"oleSize", "customWorkbookViews", "pivotCaches", "smartTagPr", "smartTagTypes",
                      "webPublishing", "fileRecoveryPr", "webPublishObjects", "extLst"})
                    if (l == later) before = n;
            }
            const std::string name = Prefix(book) + "calcPr";
            calc = before ? book.insert_child_before(name.c_str(), before) : book.append_child(name.c_str());
        }
        if (!calc.attribute("fullCalcOnLoad")) calc.append_attribute("fullCalcOnLoad");
        calc.attribute("fullCalcOnLoad").set_value("1");
        replaced[s_->book_part] = WriteXml(s_->book);
    }
    if (removed_formula && !s_->calc_chain_part.empty()) {
        // The calculation chain lists formula cells; one that lists a cell without a formula is an
        // error to Excel. Without the chain Excel builds it again.
        removed.insert(s_->calc_chain_part);
        for (auto r = s_->book_rels.document_element().first_child(); r; r = r.next_sibling())
            if (s_->calc_chain_id == r.attribute("Id").value()) {
                s_->book_rels.document_element().remove_child(r);
                break;
            }
        replaced[s_->book_rels_part] = WriteXml(s_->book_rels);
        // Its content type goes too; a package without a readable list of types is left as it is.
        pugi::xml_document types;
        const std::string part = s_->pkg->Find("[Content_Types].xml");
        const std::string text = part.empty() ? std::string() : s_->pkg->Read(part);
        if (!part.empty() &&
            types.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_auto) &&
            types.document_element()) {
            for (auto o = types.document_element().first_child(); o; o = o.next_sibling())
                if (LocalName(o) == "Override" &&
                    std::string_view(o.attribute("PartName").value()) == "/" + s_->calc_chain_part) {
                    types.document_element().remove_child(o);
                    break;
                }
            replaced[part] = WriteXml(types);
        }
    }
    return s_->pkg->Write(replaced, removed);
}

void Workbook::Set(const std::string& sheet, int row, int col, const Cell& value) {
    Sheet* sh = FindSheet(sheet);
    if (!sh)
        raise(FaultCode::NoSuchSheet, "La hoja \"" + sheet + "\" ya no está en el libro \"" + path_ + "\".");
    const auto key = std::make_tuple(sheet, row, col);
    auto it = edits_.find(key);
    if (it == edits_.end())
        it = edits_.emplace(key, CellEdit{sheet, row, col, sh->Get(row, col), sh->FormulaText(row, col), {}})
                 .first;
    sh->Set(row, col, value);
    it->second.value = sh->Get(row, col);
}

std::optional<Cell> Workbook::Computed(const std::string& sheet, int row, int col, int depth) {
    Sheet* sh = FindSheet(sheet);
    const std::string formula = sh ? sh->FormulaText(row, col) : "";
    if (formula.empty() || depth > 16) return std::nullopt;  // a deeper chain (or a cycle): the cached result
    const auto v =
        EvaluateFormula(formula, [&](const std::string& other, int r, int c) -> std::optional<double> {
            const std::string name = other.empty() ? sheet : other;
            Sheet* o = FindSheet(name);
            if (!o) return std::nullopt;
            if (!o->FormulaText(r, c).empty()) {
                const auto x = Computed(name, r, c, depth + 1);
                return x && x->kind == CellKind::Number ? std::optional(x->number) : std::nullopt;
            }
            const Cell cell = o->Get(r, c);
            if (cell.kind == CellKind::Empty) return 0.0;
            return cell.kind == CellKind::Number ? std::optional(cell.number) : std::nullopt;
        });
    return v ? std::optional(Cell::Num(*v)) : std::nullopt;
}

const std::vector<CellEdit> Workbook::Edits() const {
    std::vector<CellEdit> out;
    for (const auto& [key, e] : edits_) out.push_back(e);
    return out;
}

namespace {

// "registro 3, columna "Caudal"" by the sheet's header row (its first row holding anything).
std::string CellPlace(const Sheet& sh, int row, int col) {
    const auto& values = sh.Values();
    const int header = values.empty() ? 0 : values.begin()->first.first;
    const std::string name = DisplayText(sh.Get(header, col));
    if (row > header && !name.empty())
        return "registro " + std::to_string(row - header) + ", columna \"" + name + "\"";
    return "celda " + RefName(row, col);
}

std::string Shown(const Cell& c, const std::string& formula) {
    if (!formula.empty()) return "la fórmula =" + formula;
    const std::string t = DisplayText(c);
    return t.empty() ? "vacía" : t;
}

}  // namespace

void Workbook::Rebase(Clash clash) {
    // The identity before the bytes: a save that lands while reading is seen at the next look.
    const FileIdentity id = IdentityOf(path_);
    std::string bytes = ReadWorkbookFile(path_);
    if (bytes.compare(0, 4, kZip, 4) != 0)
        raise(FaultCode::FileNotSaved,
              "No se pudo guardar el libro \"" + path_ +
                  "\": otro programa lo reemplazó por un archivo que no es un libro .xlsx. El archivo no se "
                  "modificó; sus cambios quedan pendientes.");
    auto fresh = Load(std::move(bytes), path_);
    std::vector<std::string> clashes;
    for (auto it = edits_.begin(); it != edits_.end();) {
        CellEdit& e = it->second;
        Sheet* sh = nullptr;
        for (const auto& s : fresh->sheets)
            if (s->Name() == e.sheet) sh = s.get();
        if (!sh)
            throw(forms::SaveRefused(forms::SaveRefused::Why::Conflict,
                                     "No se pudo guardar el libro \"" + path_ +
                                         "\": otro programa quitó la hoja \"" + e.sheet +
                                         "\", que tiene cambios de Cauce. El archivo no se modificó; sus "
                                         "cambios quedan pendientes."));
        const Cell disk = sh->Get(e.row, e.col);
        const std::string disk_formula = sh->FormulaText(e.row, e.col);
        const bool untouched =
            e.base_formula.empty() ? disk_formula.empty() && disk == e.base : disk_formula == e.base_formula;
        const bool same = disk_formula.empty() && disk == e.value;
        if (!untouched && !same) {
            if (clash == Clash::Refuse) {
                clashes.push_back("en la hoja \"" + e.sheet + "\", " + CellPlace(*sh, e.row, e.col) +
                                  ", otro programa guardó " + Shown(disk, disk_formula) +
                                  " y en Cauce se escribió " + Shown(e.value, ""));
            } else if (clash == Clash::TakeTheirs) {
                it = edits_.erase(it);
                continue;
            } else {
                e.base = disk;
                e.base_formula = disk_formula;
            }
        }
        ++it;
    }
    if (!clashes.empty()) {
        std::string list;
        for (std::size_t i = 0; i < clashes.size() && i < 3; ++i) list += (i ? "; " : "") + clashes[i];
        if (clashes.size() > 3) list += "; y " + std::to_string(clashes.size() - 3) + " celdas más";
        throw(
            forms::SaveRefused(forms::SaveRefused::Why::Conflict,
                               "No se pudo guardar el libro \"" + path_ + "\": " + list +
                                   ". El archivo no se modificó; el valor de Cauce queda pendiente hasta que "
                                   "elija cuál conservar."));
    }
    for (const auto& [key, e] : edits_)
        for (const auto& s : fresh->sheets)
            if (s->Name() == e.sheet) s->Set(e.row, e.col, e.value);
    s_ = std::move(fresh);
    disk_ = id;
    ++version_;
}

void Workbook::HoldForEditing() {
    if (on_disk_ && !legacy_ && !edit_lock_) edit_lock_ = std::make_unique<EditLock>(path_);
}

std::string Workbook::ReadOnly() const {
    return edit_lock_ && !legacy_ ? edit_lock_->Holder() : "";
}

void Workbook::Resolve(bool keep_mine) {
    if (!on_disk_ || legacy_) return;
    Rebase(keep_mine ? Clash::KeepMine : Clash::TakeTheirs);
}

bool Workbook::Refresh() {
    if (!on_disk_ || legacy_ || !edits_.empty() || Modified()) return false;
    const FileIdentity now = IdentityOf(path_);
    if (!now.Exists() || now == disk_) return false;
    try {
        Rebase(Clash::Refuse);
    } catch (const Fault&) {
        return false;  // the next save says what is wrong
    }
    return true;
}

std::string Workbook::Save() {
    if (!Modified()) return "";
    if (!on_disk_)
        raise(FaultCode::FileNotSaved,
              "El libro \"" + path_ + "\" no está en el disco: no se puede guardar.");
    if (edit_lock_ && !legacy_ && !edit_lock_->Retake())
        throw(forms::SaveRefused(forms::SaveRefused::Why::Locked,
                                 edit_lock_->Holder() + " Sus cambios no se guardaron; quedan pendientes."));
    std::string note;
    // Formulas the user's values replace.
    for (const auto& [key, e] : edits_)
        if (!e.base_formula.empty() && e.value.kind != CellKind::Empty) {
            if (!note.empty()) note += " ";
            const Sheet* sh = FindSheet(e.sheet);
            note += "Se reemplazó la fórmula =" + e.base_formula + " de la hoja \"" + e.sheet + "\" (" +
                    (sh ? CellPlace(*sh, e.row, e.col) : RefName(e.row, e.col)) + ") por el valor " +
                    DisplayText(e.value) + ".";
        }
    fs::path target = path_;
    std::string bytes;
    if (legacy_) {
        // The old file stays as it is; the changes go to an .xlsx of the same name beside it.
        target.replace_extension(".xlsx");
        for (int n = 2; fs::exists(target) && n < 100; ++n)
            target.replace_filename(fs::path(path_).stem().string() + " (" + std::to_string(n) + ").xlsx");
        if (fs::exists(target))
            raise(FaultCode::FileNotSaved, "No se pudo guardar el libro \"" + path_ +
                                               "\": ya existen demasiadas copias .xlsx junto a él.");
        note = "El libro \"" + path_ +
               "\" tiene el formato antiguo de Excel (.xls) y no se modifica: los cambios se "
               "guardaron en \"" +
               target.string() + "\": " + LegacyLosses(legacy_omitted_) + "." +
               (note.empty() ? "" : " " + note);
        bytes = Bytes();
        ReplaceFile(target, bytes);
    } else {
        // Another program's save since the file was read is merged cell by cell; the identity is
        // looked at again right before the replacement, so a save that lands meanwhile is merged too.
        // Saves of other Cauce processes wait for this one.
        SaveLock lock(path_);
        for (int attempt = 0;; ++attempt) {
            const FileIdentity now = IdentityOf(path_);
            if (now.Exists() && !(now == disk_)) Rebase(Clash::Refuse);
            bytes = Bytes();
            if (IdentityOf(path_) == now) break;
            if (attempt == 20)
                raise(FaultCode::FileNotSaved, "No se pudo guardar el libro \"" + path_ +
                                                   "\": otro programa lo está escribiendo sin parar. El "
                                                   "libro no se modificó; sus cambios "
                                                   "quedan pendientes.");
        }
        ReplaceFile(target, bytes);
    }
    // From now on the workbook is the file just written.
    auto written = Load(std::move(bytes), target.string());
    // Formula results were left out of the file; the ones known here stay shown.
    for (const auto& sh : written->sheets)
        if (Sheet* old = FindSheet(sh->Name()); old && sh->HasFormulas()) sh->KeepResults(*old);
    s_ = std::move(written);
    path_ = target.string();
    legacy_ = false;
    disk_ = IdentityOf(path_);
    edits_.clear();
    ++version_;
    return note;
}

}  // namespace cauce::workbook
