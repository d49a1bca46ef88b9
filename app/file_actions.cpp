#include "app/file_actions.hpp"

#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QPrintDialog>
#include <QPrinter>
#include <QSaveFile>
#include <QSettings>
#include <QStatusBar>

#include "app/dialogs.hpp"
#include "app/navigator.hpp"
#include "app/screen_view.hpp"
#include "app/table_clipboard.hpp"
#include "forms/screen.hpp"
#include "hydraulics/checked_math.hpp"
#include "reach/book.hpp"
#include "reach/csv.hpp"
#include "reach/run.hpp"
#include "screens/natural_screen.hpp"

namespace cauce::app {

namespace {

QString Q(const std::string& s) {
    return QString::fromStdString(s);
}

constexpr int kRecentMax = 8;
const char* kRecentKey = "recientes";

}  // namespace

bool AskProjectFields(QWidget* parent, ProjectFields& fields) {
    QDialog dialog(parent);
    dialog.setWindowTitle(QStringLiteral("Datos del proyecto"));
    auto* form = new QFormLayout(&dialog);
    auto line = [&](const QString& label, const std::string& value) {
        auto* edit = new QLineEdit(Q(value), &dialog);
        edit->setAccessibleName(label);
        form->addRow(label, edit);
        return edit;
    };
    QLineEdit* proyecto = line(QStringLiteral("Proyecto"), fields.proyecto);
    QLineEdit* cliente = line(QStringLiteral("Cliente"), fields.cliente);
    QLineEdit* autor = line(QStringLiteral("Autor"), fields.autor);
    QLineEdit* reviso = line(QStringLiteral("Revisó"), fields.reviso);
    form->addRow(new QLabel(QStringLiteral("Se guardan en el libro y aparecen en cada informe."), &dialog));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    form->addRow(buttons);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    if (dialog.exec() != QDialog::Accepted) return false;
    fields = {proyecto->text().trimmed().toStdString(), cliente->text().trimmed().toStdString(),
              autor->text().trimmed().toStdString(), reviso->text().trimmed().toStdString()};
    return true;
}

FileActions::FileActions(QMainWindow& window, forms::Screen& model, ScreenView& view, Prompter& prompter,
                         std::function<bool(const QString&)> open)
    : QObject(&window),
      window_(window),
      model_(model),
      view_(view),
      prompter_(prompter),
      open_(std::move(open)) {
    if (Navigator* nav = view_.DataNavigator()) {
        connect(nav, &Navigator::addRequested, this, [this] { AddRecord(); });
        connect(nav, &Navigator::deleteRequested, this, [this] { DeleteRecord(); });
    }
}

void FileActions::Fail(const std::string& why) {
    prompter_.Fault(&window_, Q(why));
}

QStringList FileActions::Recent() {
    return QSettings().value(kRecentKey).toStringList();
}

void FileActions::Remember(const QString& path) {
    QStringList list = Recent();
    const QString full = QFileInfo(path).absoluteFilePath();
    list.removeAll(full);
    list.prepend(full);
    while (list.size() > kRecentMax) list.removeLast();
    QSettings().setValue(kRecentKey, list);
}

void FileActions::AddTo(QMenu& file, QAction* before) {
    auto add = [&](QAction* a) {
        file.insertAction(before, a);
        return a;
    };
    auto action = [&](const QString& text, auto slot) {
        auto* a = new QAction(text, &file);
        connect(a, &QAction::triggered, this, slot);
        return add(a);
    };
    const bool data = model_.HasData();
    action(QStringLiteral("&Nuevo libro..."), [this] {
        const QString path =
            QFileDialog::getSaveFileName(&window_, QStringLiteral("Nuevo libro"), QDir::homePath(),
                                         QStringLiteral("Libros de Excel (*.xlsx)"));
        if (path.isEmpty()) return;
        NewWorkbook(path.endsWith(QStringLiteral(".xlsx"), Qt::CaseInsensitive) ? path : path + ".xlsx");
    })->setEnabled(data);

    QMenu* recent = new QMenu(QStringLiteral("&Recientes"), &file);
    add(recent->menuAction())->setEnabled(data);
    connect(recent, &QMenu::aboutToShow, this, [this, recent] {
        recent->clear();
        const QStringList list = Recent();
        if (list.isEmpty()) recent->addAction(QStringLiteral("(ninguno)"))->setEnabled(false);
        for (const QString& path : list)
            recent->addAction(QDir::toNativeSeparators(path), this, [this, path] {
                if (open_(path)) Remember(path);
            });
    });

    QMenu* records = new QMenu(QStringLiteral("Re&gistros"), &file);
    add(records->menuAction())->setEnabled(data);
    records->addAction(QStringLiteral("&Agregar registro"), this, [this] { AddRecord(); });
    records->addAction(QStringLiteral("&Eliminar registro"), this, [this] { DeleteRecord(); });
    records->addAction(QStringLiteral("&Renumerar el tramo"), this, [this] { Renumber(); });
    file.insertSeparator(before);

    action(QStringLiteral("Datos del &proyecto..."), [this] {
        ProjectFields f = Project();
        if (AskProjectFields(&window_, f)) SetProject(f);
    })->setEnabled(data);
    action(QStringLiteral("&Informe..."), [this] {
        if (!AskProjectOnce()) return;
        const QString start = QDir::homePath() + "/" + QStringLiteral("informe-%1.pdf").arg(Q(model_.Name()));
        const QString path = QFileDialog::getSaveFileName(&window_, QStringLiteral("Informe"), start,
                                                          QStringLiteral("PDF (*.pdf)"));
        if (path.isEmpty()) return;
        if (WriteReport(path.endsWith(QStringLiteral(".pdf"), Qt::CaseInsensitive) ? path : path + ".pdf"))
            window_.statusBar()->showMessage(QStringLiteral("Informe escrito en %1").arg(path), 10000);
    });
    action(QStringLiteral("Im&primir..."), [this] {
        if (!AskProjectOnce()) return;
        QPrinter printer(QPrinter::HighResolution);
        printer.setPageSize(QPageSize(QPageSize::A4));
        QPrintDialog dialog(&printer, &window_);
        if (dialog.exec() == QDialog::Accepted) Print(printer);
    });
    action(QStringLiteral("&Exportar tabla..."), [this] {
        const QStringList names = TableNames();
        if (names.isEmpty()) {
            prompter_.Note(&window_, QStringLiteral("Esta pantalla no tiene tablas que exportar."));
            return;
        }
        bool ok = true;
        const QString which = names.size() == 1
                                  ? names.front()
                                  : QInputDialog::getItem(&window_, QStringLiteral("Exportar tabla"),
                                                          QStringLiteral("Tabla:"), names, 0, false, &ok);
        if (!ok) return;
        const QStringList styles{QStringLiteral("\";\" y coma decimal (hoja de cálculo en español)"),
                                 QStringLiteral("\",\" y punto decimal")};
        const QString style = QInputDialog::getItem(&window_, QStringLiteral("Exportar tabla"),
                                                    QStringLiteral("Separador:"), styles, 0, false, &ok);
        if (!ok) return;
        const QString path =
            QFileDialog::getSaveFileName(&window_, QStringLiteral("Exportar tabla"),
                                         QDir::homePath() + "/tabla.csv", QStringLiteral("CSV (*.csv)"));
        if (path.isEmpty()) return;
        if (ExportTable(path, static_cast<int>(names.indexOf(which)), style == styles.front() ? ';' : ','))
            window_.statusBar()->showMessage(QStringLiteral("Tabla escrita en %1").arg(path), 10000);
    });
    file.insertSeparator(before);
}

bool FileActions::SaveFirst() {
    try {
        model_.SavePending();
        return true;
    } catch (const Fault& f) {
        Fail(std::string("No se pudieron guardar los cambios del registro: ") + f.what());
        return false;
    }
}

bool FileActions::Reopen(int record) {
    const QString path = Q(model_.WorkbookPath());
    if (!open_(path)) return false;
    try {
        if (record >= 1 && record <= model_.RecordCount()) model_.MoveTo(record);
    } catch (const Fault& f) {
        Fail(f.what());
    }
    view_.Refresh();
    return true;
}

bool FileActions::NewWorkbook(const QString& path) {
    if (model_.HasData() && model_.Source() && !SaveFirst()) return false;
    try {
        reach::CreateReachWorkbook(path.toStdString());
    } catch (const Fault& f) {
        Fail(f.what());
        return false;
    }
    if (!open_(path)) return false;
    Remember(path);
    return true;
}

bool FileActions::AddRecord() {
    if (!model_.Source()) {
        prompter_.Note(&window_,
                       QStringLiteral("Abra un libro o cree uno nuevo (Archivo > Nuevo libro...)."));
        return false;
    }
    if (!SaveFirst()) return false;
    int added = 0;
    try {
        added = reach::AddRecord(model_.WorkbookPath(), model_.Sheet(), model_.Record());
    } catch (const Fault& f) {
        Fail(f.what());
        return false;
    }
    return Reopen(added);
}

bool FileActions::DeleteRecord() {
    if (!model_.Source() || model_.Record() < 1) return false;
    const int record = model_.Record();
    if (!prompter_.Ask(&window_,
                       QStringLiteral("¿Eliminar el registro %1 de la hoja \"%2\"? No se puede deshacer.")
                           .arg(record)
                           .arg(Q(model_.Sheet()))))
        return false;
    if (!SaveFirst()) return false;
    try {
        reach::DeleteRecord(model_.WorkbookPath(), model_.Sheet(), record);
    } catch (const Fault& f) {
        Fail(f.what());
        return false;
    }
    return Reopen(std::min(record, model_.RecordCount() - 1));
}

bool FileActions::Renumber() {
    if (!model_.Source()) return false;
    if (!SaveFirst()) return false;
    const int record = model_.Record();
    int n = 0;
    try {
        n = reach::RenumberReach(model_.WorkbookPath(), model_.Sheet());
    } catch (const Fault& f) {
        Fail(f.what());
        return false;
    }
    if (!Reopen(record)) return false;
    window_.statusBar()->showMessage(QStringLiteral("Secciones numeradas de 1 a %1").arg(n), 10000);
    return true;
}

bool FileActions::HasReach() const {
    return reach::KindOfSheet(model_.Sheet()) != nullptr;
}

ProjectFields FileActions::Project() const {
    return model_.Source() ? ReadProjectFields(model_.WorkbookPath()) : ProjectFields{};
}

bool FileActions::SetProject(const ProjectFields& fields) {
    if (!model_.Source()) return false;
    if (!SaveFirst()) return false;
    const int record = model_.Record();
    try {
        WriteProjectFields(model_.WorkbookPath(), fields);
    } catch (const Fault& f) {
        Fail(f.what());
        return false;
    }
    // The screen's workbook is read again: its next save starts from the file as it now is.
    return Reopen(record);
}

bool FileActions::AskProjectOnce() {
    if (!model_.Source() || !Project().Empty()) return true;
    ProjectFields f;
    if (!AskProjectFields(&window_, f)) return false;
    if (!f.Empty()) SetProject(f);
    return true;
}

std::string FileActions::ReportTo(
    const std::function<std::string(const reach::ReachResult&, const ReachCapture&, const ProjectFields&)>&
        reach_report,
    const std::function<std::string(const QString&, const ProjectFields&)>& case_report) {
    const ProjectFields project = Project();
    const reach::ReachKind* kind = reach::KindOfSheet(model_.Sheet());
    if (!kind) {
        const QString book = model_.Source() ? QFileInfo(Q(model_.WorkbookPath())).fileName() : QString();
        return case_report(book, project);
    }
    if (!model_.Source())
        return "Abra el libro del tramo (Archivo > Abrir libro...) antes de pedir su informe.";
    const std::string depth = model_.Get(reach::DepthBox(*kind)).text;
    if (depth.empty())
        return std::string("Escriba el tirante en la última sección (") + kind->depth_name +
               ") en la pantalla antes de pedir el informe.";
    try {
        model_.SavePending();
    } catch (const Fault& f) {
        return std::string("No se pudieron guardar los cambios del registro: ") + f.what();
    }
    reach::ReachOptions options{model_.Sheet(), kind->scour ? "" : depth, kind->scour ? depth : "", false};
    ReachCapture capture;
    const reach::ReachResult r = reach::RunReach(model_.WorkbookPath(), options, Capture(capture));
    if (!r.Ok()) return "El tramo no se pudo calcular: " + r.error;
    return reach_report(r, capture, project);
}

bool FileActions::Reported(const std::string& why) {
    if (!why.empty()) Fail(why);
    return why.empty();
}

bool FileActions::WriteReport(const QString& path) {
    return Reported(ReportTo([&](const reach::ReachResult& r, const ReachCapture& c,
                                 const ProjectFields& p) { return WriteReachReportPdf(path, r, c, p); },
                             [&](const QString& book, const ProjectFields& p) {
                                 return WriteCaseReportPdf(path, view_, Q(model_.Name()), book, p);
                             }));
}

bool FileActions::Print(QPagedPaintDevice& device) {
    return Reported(ReportTo([&](const reach::ReachResult& r, const ReachCapture& c,
                                 const ProjectFields& p) { return ComposeReachReport(device, r, c, p); },
                             [&](const QString& book, const ProjectFields& p) {
                                 return ComposeCaseReport(device, view_, Q(model_.Name()), book, p);
                             }));
}

QStringList FileActions::TableNames() const {
    QStringList names;
    for (const auto& t : FindTables(model_)) {
        const bool levels = t.Locate(screens::section::LevelElevation(1)).first >= 0;
        names << (levels ? QStringLiteral("Tabla de niveles") : QStringLiteral("Tabla del perfil"));
    }
    return names;
}

bool FileActions::ExportTable(const QString& path, int table, char separator) {
    const auto tables = FindTables(model_);
    if (table < 0 || table >= static_cast<int>(tables.size())) {
        Fail("Esta pantalla no tiene esa tabla.");
        return false;
    }
    const BoxTable& t = tables[static_cast<std::size_t>(table)];
    std::string text = reach::CsvLine(t.headings, separator) + "\r\n";
    for (const auto& row : t.cells) {
        std::vector<std::string> cells;
        bool any = false;
        for (const auto& box : row) {
            cells.push_back(model_.Get(box).text);
            any = any || !cells.back().empty();
        }
        if (any) text += reach::CsvLine(cells, separator) + "\r\n";
    }
    QSaveFile out(path);
    const QByteArray bytes = QByteArray::fromStdString(text);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit()) {
        Fail("No se pudo escribir \"" + path.toStdString() + "\": " + out.errorString().toStdString());
        return false;
    }
    return true;
}

}  // namespace cauce::app
