#include "app/report/report.hpp"

#include <QBuffer>
#include <QCoreApplication>
#include <QDate>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <QSaveFile>
#include <QWidget>

#include "app/report/report_standard.hpp"
#include "hydraulics/checked_math.hpp"
#include "workbook/properties.hpp"

namespace cauce::app {

namespace {

QString Q(const std::string& s) {
    return QString::fromStdString(s);
}

const QColor kRule(120, 120, 120);
const QColor kTitle(18, 60, 120);
const QColor kNote(70, 70, 70);

// The document properties that hold the project fields.
constexpr const char* kProyecto = "Proyecto";
constexpr const char* kCliente = "Cliente";
constexpr const char* kAutor = "Autor";
constexpr const char* kReviso = "Revisó";

void Layout(QPdfWriter& writer) {
    writer.setResolution(300);
    writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                     QMarginsF(18, 16, 16, 14), QPageLayout::Millimeter));
}

// Runs a composition twice when the device is a printer: first into a PDF in memory to count the
// pages, so that every footer can say "de Y"; a PDF file is composed into memory and then written.
// total is the page count of the first pass (0 in it); pages is set to the pages laid.
using Composer = std::function<std::string(QPagedPaintDevice& device, int total, int& pages)>;

std::string TwoPasses(QPagedPaintDevice& device, const Composer& compose) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    int total = 0, pages = 0;
    {
        QPdfWriter probe(&buffer);
        Layout(probe);
        const std::string why = compose(probe, 0, total);
        if (!why.empty()) return why;
    }
    return compose(device, total, pages);
}

void ProjectBlock(ReportPages& pages, const ProjectFields& project) {
    auto field = [&](const char* name, const std::string& value) {
        pages.Text(QStringLiteral("%1: %2").arg(QString::fromUtf8(name),
                                                value.empty() ? QStringLiteral("—") : Q(value)),
                   9.5, false);
    };
    field(kProyecto, project.proyecto);
    field(kCliente, project.cliente);
    field(kAutor, project.autor);
    field(kReviso, project.reviso);
}

void MethodsSection(ReportPages& pages, bool scour) {
    pages.Heading(QStringLiteral("1. Métodos"), 30 * pages.Mm());
    const std::vector<QString> items{
        QStringLiteral(
            "Caudal por la ecuación de Manning, Q = A R^(2/3) S^(1/2) / n, con R = A / P; cada sección se "
            "describe por hasta 15 niveles (cota Z, ancho superficial T) unidos por taludes rectos."),
        QStringLiteral(
            "Profundidad normal Yn: marcha de 0.001 m desde el fondo hasta que el caudal de Manning alcanza "
            "Q; se informa un paso por encima. Profundidad crítica Yc: marcha de 0.001 m hacia abajo "
            "dentro de la franja donde el número de Froude Q T^(1/2) / (A^(3/2) g^(1/2)) pasa por 1; se "
            "informa un paso por debajo. g = 9.81 m/s2."),
        QStringLiteral(
            "Zona inundable: sobre las orillas el cauce principal sube entre paredes 1:1 con el perímetro "
            "mojado de banca llena, y la zona de ancho total B (el ancho del cauce incluido) agrega un "
            "rectángulo con dos lados a 45°, con su propia rugosidad; la altura sobre las orillas avanza en "
            "pasos de 0.002 m hasta que ambos llevan Q."),
        QStringLiteral(
            "Perfil: paso directo desde la última sección hacia aguas arriba, con pasos de tirante de "
            "0.005 m; cada paso evalúa la geometría de la sección de aguas abajo como si ocupara todo el "
            "tramo. Un tramo es suave (M1, M2) si Yn >= Yc y fuerte (S1, S2) si no; M2 arranca y S1 se "
            "detiene 0.02 m sobre Yc. Energía específica E = Y + V²/19.62; pendiente de fricción Sf = "
            "(n V / R^(2/3))²."),
    };
    for (const auto& t : items) {
        pages.Text(QStringLiteral("• ") + t, 8.5);
        pages.Skip(1);
    }
    if (scour) {
        pages.Text(
            QStringLiteral("• Socavación general (suelo no cohesivo), con α = Sf^(1/2) / n y Dm en metros: "
                           "ds = (Y^(5/3) α / 4.7 / 0.9 / Dm^0.28)^(1/(1+x)); la socavación bajo el fondo es "
                           "ds − Y. El exponente es 1/(1+x) = Dm^a / (Dm^a + b), "
                           "con (a, b) = (0.03, 0.322) para Dm < 0.028 m, (0.092, 0.223) hasta 0.182 m y "
                           "(0.187, 0.191) hasta 1 m; desde 1 m el exponente es 1."),
            8.5);
    }
}

void InputSection(ReportPages& pages, const reach::ReachResult& r, int sketches) {
    std::vector<QString> head{
        QStringLiteral("Sección"), QStringLiteral("Registro"), QStringLiteral("Z fondo m"),
        QStringLiteral("Niveles"), QStringLiteral("n"),        QStringLiteral("S0"),
        QStringLiteral("Q m3/s"),  QStringLiteral("B zona m"), QStringLiteral("n zona")};
    std::vector<double> weights{1, 1.1, 1.3, 1, 1, 1.1, 1.1, 1.2, 1};
    if (r.kind->scour) {
        head.insert(head.end(), {QStringLiteral("Abscisa m"), QStringLiteral("D mm")});
        weights.insert(weights.end(), {1.2, 0.9});
    }
    std::vector<std::vector<QString>> rows;
    for (const auto& s : r.sections) {
        const reach::SectionInput& in = s.input;
        std::vector<QString> row{QString::number(s.section),
                                 QString::number(s.record),
                                 in.levels.empty() ? QString() : Q(in.levels.front().first),
                                 QString::number(in.levels.size()),
                                 Q(in.roughness),
                                 Q(in.slope),
                                 Q(in.discharge),
                                 Q(in.flood_width),
                                 Q(in.flood_roughness)};
        if (r.kind->scour) row.insert(row.end(), {Q(in.chainage), Q(in.grain_size)});
        rows.push_back(row);
    }
    pages.Heading(QStringLiteral("2. Datos de entrada"), pages.TableStart(rows.size()) + 12 * pages.Mm());
    pages.Text(QStringLiteral(
                   "Datos de cada registro tal como los muestra la pantalla %1 (los textos del libro). "
                   "La rugosidad n es la de Manning; S0 es la pendiente del fondo; la zona inundable se da "
                   "por su ancho total B y su rugosidad.")
                   .arg(Q(r.kind->form)),
               8.5);
    pages.Skip(2);
    pages.Table(head, rows, weights);
    const QString levels = QStringLiteral(
        "Los niveles de cada sección (cota Z y ancho T) se listan junto a su "
        "dibujo, en el apartado %1.");
    pages.Text(levels.arg(sketches), 8);
}

void ResultSection(ReportPages& pages, const reach::ReachResult& r) {
    std::vector<std::vector<QString>> rows;
    for (const auto& s : r.sections) {
        QString notice = Q(s.notice);
        if (!s.error.empty())
            notice = Q(s.error) + (notice.isEmpty() ? QString() : QStringLiteral("; ") + notice);
        rows.push_back({QString::number(s.section), Q(s.yn), Q(s.yc), Q(s.qlleno),
                        s.overflow ? QStringLiteral("sí") : QStringLiteral("no"), notice});
    }
    pages.Heading(QStringLiteral("3. Resultados por sección"),
                  pages.TableStart(rows.size()) + 10 * pages.Mm());
    pages.Text(QStringLiteral(
                   "Profundidad normal Yn y crítica Yc de cada sección (\"(Y?)\"), caudal a banca llena y "
                   "si el caudal desborda hacia la zona inundable."),
               8.5);
    pages.Skip(2);
    pages.Table({QStringLiteral("Sección"), QStringLiteral("Yn m"), QStringLiteral("Yc m"),
                 QStringLiteral("Q lleno m3/s"), QStringLiteral("Desborda"), QStringLiteral("Avisos")},
                rows, {1, 1, 1, 1.4, 1, 4});
}

void ProfileSection(ReportPages& pages, const reach::ReachResult& r) {
    std::vector<QString> head{QStringLiteral("Sección"), QStringLiteral("Abscisa m"), QStringLiteral("Tipo"),
                              QStringLiteral("Y m"),     QStringLiteral("Z agua m"),  QStringLiteral("V m/s"),
                              QStringLiteral("Froude"),  QStringLiteral("E m"),       QStringLiteral("Sf")};
    std::vector<double> weights{0.9, 1.1, 0.7, 0.9, 1.1, 0.9, 0.9, 0.9, 1.2};
    if (r.scour) {
        head.push_back(QStringLiteral("Ysoc m"));
        weights.push_back(1);
    }
    std::vector<std::vector<QString>> rows;
    for (const auto& p : r.profile) {
        std::vector<QString> row{QString::number(p.section),
                                 Q(p.chainage),
                                 Q(p.type),
                                 Q(p.y),
                                 Q(p.zw),
                                 Q(p.v),
                                 Q(p.froude),
                                 Q(p.energy),
                                 Q(p.sf)};
        if (r.scour) row.push_back(Q(p.ysoc));
        rows.push_back(row);
    }
    pages.Heading(QStringLiteral("4. Perfil de la superficie del agua"),
                  pages.TableStart(rows.size()) + 14 * pages.Mm());
    pages.Text(
        QStringLiteral("\"Perfiles\" con %1 = %2 m en la sección %3, calculado desde la última sección hacia "
                       "aguas arriba. Abscisa, tipo, Z agua y V son las columnas de la pantalla; Y, Froude, "
                       "E y Sf son los de cada sección a su tirante del perfil, con la n de la pantalla.")
            .arg(Q(r.kind->depth_name), Q(r.depth))
            .arg(r.n_sections),
        8.5);
    pages.Skip(2);
    pages.Table(head, rows, weights);
}

void PlotSection(ReportPages& pages, const ReachCapture& c, int number) {
    const double h = pages.Width() * 460 / 900;
    pages.Heading(QStringLiteral("%1. Perfil longitudinal").arg(number), h);
    if (c.profile.empty()) {
        pages.Text(
            QStringLiteral("El tramo tiene menos de dos secciones dibujables: no hay perfil que dibujar."),
            9);
        return;
    }
    ProfileChart chart;
    chart.setAttribute(Qt::WA_DontShowOnScreen);
    chart.resize(900, 460);
    chart.show();
    chart.Show(c.profile);
    const bool standard = c.standard && c.standard->result.Ok() && !c.standard->result.line.empty();
    if (standard) AddStandardLines(chart.chart(), c.standard->result);
    QCoreApplication::processEvents();
    pages.Need(h + 10 * pages.Mm());  // the plot and its caption on one page
    const QRectF box = pages.Block(h);
    QPainter& p = pages.Painter();
    p.save();
    chart.render(&p, box, chart.viewport()->rect());
    p.restore();
    pages.Skip(2);
    QString caption = QStringLiteral(
        "Fondo, superficie del agua y profundidad crítica contra la abscisa; sobre "
        "cada punto, la sección y su tipo de perfil.");
    if (standard) {
        caption += QStringLiteral(" Con trazos y puntos, el agua del paso estándar; punteada, su energía");
        caption += c.standard->result.jump ? QStringLiteral("; el triángulo marca el resalto hidráulico.")
                                           : QStringLiteral(".");
    }
    pages.Text(caption, 8);
}

void SketchSection(ReportPages& pages, const reach::ReachResult& r, const ReachCapture& c, int number) {
    const double mm = pages.Mm();
    const double h = 52 * mm;
    pages.Heading(QStringLiteral("%1. Secciones transversales").arg(number), h + 14 * mm);
    pages.Text(
        QStringLiteral("Cada sección con el agua a su profundidad normal; la profundidad crítica, a trazos. "
                       "Las secciones anchas y poco profundas se dibujan con las alturas exageradas, como se "
                       "indica en cada una."),
        8.5);
    pages.Skip(2);
    QPainter& p = pages.Painter();
    for (std::size_t k = 0; k < r.sections.size(); ++k) {
        const reach::SectionResult& s = r.sections[k];
        const QRectF block = pages.Block(h + 4 * mm);
        const QRectF figure(block.left(), block.top(), block.width() * 0.62, h);
        p.save();
        p.setPen(QPen(kRule, 0.15 * mm));
        p.setBrush(Qt::NoBrush);
        p.drawRect(figure);
        if (k < c.sketches.size() && c.sketches[k]) {
            p.setFont(ReportPages::Font(9));
            PaintSketch(p, figure.adjusted(1, 1, -1, -1), *c.sketches[k]);
        } else {
            p.drawText(figure, Qt::AlignCenter, QStringLiteral("Sección %1: sin dibujo").arg(s.section));
        }
        p.restore();

        // Beside the drawing: the levels and the section's results.
        const QFont f = ReportPages::Font(7.5), bold = ReportPages::Font(7.5, true);
        const double line = QFontMetricsF(f, p.device()).height() * 1.25;
        double y = block.top();
        const double x = figure.right() + 5 * mm, w = block.right() - x;
        auto put = [&](const QString& text, bool strong = false) {
            p.setFont(strong ? bold : f);
            p.setPen(Qt::black);
            p.drawText(QRectF(x, y, w, line), Qt::AlignLeft | Qt::AlignVCenter, text);
            y += line;
        };
        put(QStringLiteral("Sección %1 (registro %2)").arg(s.section).arg(s.record), true);
        put(QStringLiteral("Yn %1 m   Yc %2 m")
                .arg(Q(s.yn.empty() ? "-" : s.yn), Q(s.yc.empty() ? "-" : s.yc)));
        put(QStringLiteral("Q %1 m3/s   Q lleno %2 m3/s").arg(Q(s.input.discharge), Q(s.qlleno)));
        const double c1 = w * 0.2, c2 = w * 0.5, c3 = w * 0.8;
        auto columns = [&](const QString& a, const QString& b, const QString& c, bool strong) {
            p.setFont(strong ? bold : f);
            p.setPen(Qt::black);
            p.drawText(QRectF(x, y, c1, line), Qt::AlignRight | Qt::AlignVCenter, a);
            p.drawText(QRectF(x, y, c2, line), Qt::AlignRight | Qt::AlignVCenter, b);
            p.drawText(QRectF(x, y, c3, line), Qt::AlignRight | Qt::AlignVCenter, c);
            y += line;
        };
        columns(QStringLiteral("Nivel"), QStringLiteral("Z m"), QStringLiteral("T m"), true);
        const int max_rows = static_cast<int>((block.bottom() - y) / line);
        const int levels = static_cast<int>(s.input.levels.size());
        for (int j = 0; j < levels && j < max_rows; ++j) {
            const auto& [z, t] = s.input.levels[static_cast<std::size_t>(j)];
            columns(QString::number(j + 1), Q(z), Q(t), false);
        }
    }
}

QString BookName(const std::string& file) {
    return QFileInfo(Q(file)).fileName();
}

std::string ComposeReach(QPagedPaintDevice& device, int total, int& laid, const reach::ReachResult& r,
                         const ReachCapture& c, const ProjectFields& project) {
    QPainter p;
    if (!p.begin(&device)) return "no se pudo crear el informe";
    p.setRenderHint(QPainter::Antialiasing);
    const QString book = BookName(r.file.empty() ? r.path : r.file);
    ReportPages pages(device, p, QStringLiteral("Cauce · informe de cálculo · %1").arg(book), total);

    pages.Text(QStringLiteral("Informe de cálculo hidráulico"), 20, true, kTitle);
    pages.Skip(1);
    pages.Text(QStringLiteral("Perfil de la superficie del agua en flujo gradualmente variado: %1")
                   .arg(Q(r.kind->title)),
               11);
    pages.Skip(3);
    ProjectBlock(pages, project);
    pages.Skip(2);
    pages.Text(QStringLiteral("Libro: %1").arg(book), 9);
    pages.Text(QStringLiteral("Hoja: \"%1\" (pantalla %2)").arg(Q(r.kind->sheet), Q(r.kind->form)), 9);
    pages.Text(QStringLiteral("%1 en la sección %2: %3 m")
                   .arg(Q(r.kind->depth_name))
                   .arg(r.n_sections)
                   .arg(Q(r.depth)),
               9);
    pages.Text(QStringLiteral("Número de secciones: %1").arg(r.n_sections), 9);
    pages.Text(QStringLiteral("Fecha: %1").arg(QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd"))),
               9);
    pages.Skip(2);
    pages.Text(
        QStringLiteral("Unidades métricas (m, m2, m3/s, m/s); n de Manning; g = 9.81 m/s2. Cotas, tirantes y "
                       "energías en metros con dos o tres decimales, como los muestran las pantallas "
                       "(\"0.00\", \"0.000\"); Froude con dos decimales; Sf con seis."),
        8.5, false, kNote);

    int number = 5;
    const int sketches = c.standard ? 7 : 6;
    MethodsSection(pages, r.kind->scour);
    InputSection(pages, r, sketches);
    ResultSection(pages, r);
    ProfileSection(pages, r);
    if (c.standard) StandardStepSection(pages, r, *c.standard, number++);
    if (!r.notices.empty()) {
        pages.Heading(QStringLiteral("Avisos"), 10 * pages.Mm());
        for (const auto& n : r.notices) pages.Text(QStringLiteral("• ") + Q(n), 8.5);
    }
    PlotSection(pages, c, number++);
    SketchSection(pages, r, c, number);
    laid = pages.Page();
    if (!p.end()) return "no se pudo terminar el informe";
    return "";
}

std::string ComposeCase(QPagedPaintDevice& device, int total, int& laid, QWidget& screen, const QString& form,
                        const QString& book, const ProjectFields& project) {
    QPainter p;
    if (!p.begin(&device)) return "no se pudo crear el informe";
    p.setRenderHint(QPainter::Antialiasing);
    ReportPages pages(
        device, p,
        QStringLiteral("Cauce · %1%2").arg(form, book.isEmpty() ? QString() : QStringLiteral(" · ") + book),
        total);
    pages.Text(QStringLiteral("Informe de cálculo hidráulico"), 20, true, kTitle);
    pages.Skip(1);
    pages.Text(QStringLiteral("%1: el caso que muestra la pantalla").arg(form), 11);
    pages.Skip(3);
    ProjectBlock(pages, project);
    if (!book.isEmpty()) pages.Text(QStringLiteral("Libro: %1").arg(book), 9);
    pages.Text(QStringLiteral("Fecha: %1").arg(QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd"))),
               9);
    pages.Skip(3);
    // The screen drawn as it stands, to the page's width.
    const QSize size = screen.size();
    const double w = pages.Width();
    const double h = size.width() > 0 ? w * size.height() / size.width() : 0;
    const QRectF box = pages.Block(std::min(h, 150 * pages.Mm()));
    p.save();
    const double scale = std::min(box.width() / size.width(), box.height() / size.height());
    p.translate(box.topLeft());
    p.scale(scale, scale);
    screen.render(&p, QPoint(), QRegion(), QWidget::DrawChildren);
    p.restore();
    pages.Skip(3);
    pages.Text(QStringLiteral(
                   "Flujo uniforme por la ecuación de Manning, Q = A R^(2/3) S^(1/2) / n, R = A / P; "
                   "profundidades normal y crítica por las marchas de paso fijo de la pantalla; número de "
                   "Froude V / (g A / T)^(1/2) con g = 9.81 m/s2."),
               8.5, false, kNote);
    laid = pages.Page();
    if (!p.end()) return "no se pudo terminar el informe";
    return "";
}

std::string SavePdf(const QString& path, const Composer& compose) {
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly)) return "no se pudo escribir \"" + path.toStdString() + "\"";
    {
        QPdfWriter writer(&out);
        Layout(writer);
        writer.setCreator(QStringLiteral("Cauce"));
        const std::string why = TwoPasses(writer, compose);
        if (!why.empty()) {
            out.cancelWriting();
            return why;
        }
    }
    if (!out.commit()) return "no se pudo escribir \"" + path.toStdString() + "\"";
    return "";
}

}  // namespace

ProjectFields ReadProjectFields(const std::string& workbook) {
    ProjectFields f;
    try {
        const auto props = cauce::workbook::ReadCustomProperties(workbook);
        auto get = [&](const char* key) {
            const auto it = props.find(key);
            return it == props.end() ? std::string() : it->second;
        };
        f.proyecto = get(kProyecto);
        f.cliente = get(kCliente);
        f.autor = get(kAutor);
        f.reviso = get(kReviso);
    } catch (const Fault&) {
        // A legacy .xls, or a file that cannot be read: no stored fields.
    }
    return f;
}

void WriteProjectFields(const std::string& workbook, const ProjectFields& f) {
    cauce::workbook::WriteCustomProperties(
        workbook, {{kProyecto, f.proyecto}, {kCliente, f.cliente}, {kAutor, f.autor}, {kReviso, f.reviso}});
}

ProjectFields Merge(const ProjectFields& stored, const ProjectFields& given) {
    ProjectFields m = stored;
    if (!given.proyecto.empty()) m.proyecto = given.proyecto;
    if (!given.cliente.empty()) m.cliente = given.cliente;
    if (!given.autor.empty()) m.autor = given.autor;
    if (!given.reviso.empty()) m.reviso = given.reviso;
    return m;
}

reach::SectionObserver Capture(ReachCapture& capture) {
    return [&capture](const forms::Screen& screen, const reach::SectionResult* section) {
        if (section) {
            capture.sketches.push_back(SketchOf(screen));
        } else {
            capture.profile = ProfileOf(screen);
            capture.standard = StandardProfileOf(screen);
        }
    };
}

std::string ComposeReachReport(QPagedPaintDevice& device, const reach::ReachResult& r, const ReachCapture& c,
                               const ProjectFields& project) {
    return TwoPasses(device, [&](QPagedPaintDevice& d, int total, int& laid) {
        return ComposeReach(d, total, laid, r, c, project);
    });
}

std::string WriteReachReportPdf(const QString& path, const reach::ReachResult& r, const ReachCapture& c,
                                const ProjectFields& project) {
    return SavePdf(path, [&](QPagedPaintDevice& d, int total, int& laid) {
        return ComposeReach(d, total, laid, r, c, project);
    });
}

std::string ComposeCaseReport(QPagedPaintDevice& device, QWidget& screen, const QString& form,
                              const QString& book, const ProjectFields& project) {
    return TwoPasses(device, [&](QPagedPaintDevice& d, int total, int& laid) {
        return ComposeCase(d, total, laid, screen, form, book, project);
    });
}

std::string WriteCaseReportPdf(const QString& path, QWidget& screen, const QString& form, const QString& book,
                               const ProjectFields& project) {
    return SavePdf(path, [&](QPagedPaintDevice& d, int total, int& laid) {
        return ComposeCase(d, total, laid, screen, form, book, project);
    });
}

}  // namespace cauce::app
