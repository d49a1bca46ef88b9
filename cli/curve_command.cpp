// cauce curva: the rating curve (normal depth against discharge) of a natural section of a workbook
// record, of a prismatic channel or of a circular conduit, for a range of discharges. Each discharge
// is computed on a fresh screen as a person would type it: Form5's "(Y?)" for a natural section,
// Form1's "Yn?" for a channel or a conduit.
#include <cmath>
#include <iostream>

#include "cli/args.hpp"
#include "cli/command.hpp"
#include "cli/graphics.hpp"
#include "cli/progress.hpp"
#include "cli/text_table.hpp"
#include "cli/uniform.hpp"
#include "forms/binding.hpp"
#include "hydraulics/checked_math.hpp"
#include "hydraulics/natural/state.hpp"
#include "reach/run.hpp"
#include "screens/form1.hpp"
#include "screens/form5.hpp"

namespace cauce::cli {

using namespace reach;

namespace {

namespace form1 = screens::form1;
namespace form5 = screens::form5;

// Points of one call: plenty for any curve, few enough to finish in seconds.
constexpr long kMaxPoints = 5000;

struct Options {
    std::string book, sheet, record;
    ChannelInput channel;
    ConduitInput conduit;
    std::string from, to, step, format = "texto", png;
};

struct Point {
    std::string q, yn, yc, v, notice;
    bool ok = false;
    bool fault = false;  // the click stopped on a fault
};

struct Curve {
    std::string title, subtitle;
    std::vector<std::pair<std::string, std::string>> marks;  // ("Q lleno", "51.73") as shown
    std::vector<Point> points;
};

enum class Source { Record, Channel, Conduit };

Source Which(const Options& o) {
    const ChannelInput& c = o.channel;
    const bool channel = !c.b.empty() || !c.z.empty() || !c.h.empty() || !c.Bz.empty() || !c.nz.empty();
    const bool conduit = !o.conduit.D.empty();
    const bool record = !o.book.empty();
    const int given = int(channel) + int(conduit) + int(record);
    if (given == 0)
        throw UsageError(
            "diga de qué sección es la curva: un LIBRO con --registro, un canal (--base, --talud, ...) o un "
            "conducto (--diametro)");
    if (record && conduit)
        throw UsageError("--diametro no va con un LIBRO: la curva es de un registro o de un conducto");
    if (channel && conduit)
        throw UsageError("--diametro no va con --base ni --talud: elija canal o conducto");
    if (record && (!c.b.empty() || !c.z.empty()))
        throw UsageError("--base y --talud no van con un LIBRO: la sección es la del registro");
    if (!record && (!o.sheet.empty() || !o.record.empty()))
        throw UsageError("--hoja y --registro piden un LIBRO");
    return record ? Source::Record : channel ? Source::Channel : Source::Conduit;
}

std::vector<std::string> Discharges(const Options& o) {
    if (o.from.empty() || o.to.empty() || o.step.empty())
        throw UsageError("faltan los caudales: --desde Q1 --hasta Q2 --paso DQ");
    const double from = NumberOption("--desde", o.from, Sign::Positive);
    const double to = NumberOption("--hasta", o.to, Sign::Positive);
    const double step = NumberOption("--paso", o.step, Sign::Positive);
    if (to < from) throw UsageError("--hasta (" + o.to + ") es menor que --desde (" + o.from + ")");
    const double count = std::floor((to - from) / step * (1 + 1e-12) + 1e-9) + 1;
    if (count > kMaxPoints)
        throw UsageError("son " + NumberText(count) + " caudales; el máximo es " +
                         std::to_string(kMaxPoints) + " (aumente --paso)");
    std::vector<std::string> qs;
    for (long k = 0; k < static_cast<long>(count); ++k)
        qs.push_back(NumberText(from + static_cast<double>(k) * step));
    return qs;
}

Point FromForm1(const forms::Screen& s, const std::string& q) {
    Point p;
    p.q = q;
    p.fault = s.LastError().has_value();
    p.notice = s.LastError() ? s.LastError()->what() : s.Get(form1::label::Message).text;
    p.ok = !s.LastError() && !s.Get(form1::box::NormalDepth).text.empty();
    if (p.ok) {
        p.yn = s.Get(form1::box::NormalDepth).text;
        p.yc = s.Get(form1::box::CriticalDepth).text;
        p.v = s.Get(form1::box::Velocity).text;
    }
    return p;
}

Point FromForm5(const forms::Screen& s, const std::string& q) {
    Point p;
    p.q = q;
    p.fault = s.LastError().has_value();
    const std::string& message = s.Get(form5::label::Message).text;
    p.notice = s.LastError() ? s.LastError()->what() : message;
    const std::string& table = s.Get(form5::label::FloodZone).text;
    if (!table.empty() && table != "ZONA INUNDABLE:")
        p.notice = table + (p.notice.empty() ? "" : "; " + p.notice);
    p.ok = !s.LastError() && (message.empty() || message == natural::kDesbordamiento);
    if (p.ok) {
        p.yn = s.Get(form5::box::NormalDepth).text;
        p.yc = s.Get(form5::box::CriticalDepth).text;
        p.v = s.Get(form5::box::Velocity).text;
    }
    return p;
}

// A channel with a bank height marks its bank-full discharge once.
void MarkBankfull(Curve& c, const forms::Screen& s) {
    const std::string& full = s.Get(form1::box::BankfullDischarge).text;
    if (c.marks.empty() && s.Get(form1::label::BankfullDischarge).text == "Q lleno" && !full.empty())
        c.marks.push_back({"Q lleno", full});
}

template <typename RunOne>
void March(Curve& c, const std::vector<std::string>& qs, RunOne run) {
    Progress progress("curva", static_cast<int>(qs.size()));
    for (std::size_t k = 0; k < qs.size(); ++k) {
        progress.Step(static_cast<int>(k) + 1);
        c.points.push_back(run(qs[k]));
    }
}

Curve RecordCurve(const Options& o, const std::vector<std::string>& qs) {
    Curve c;
    const auto opener = forms::GetSourceOpener();
    if (!opener) throw Fault(FaultCode::NoWorkbook, "Esta versión se compiló sin libros de Excel.");
    std::string sheet = o.sheet;
    if (sheet.empty()) {
        std::string why;
        sheet = DefaultSheet(o.book, why);
        if (sheet.empty()) throw Fault(FaultCode::NoSuchSheet, why + " Dé la hoja con --hoja.");
    }
    if (o.record.empty())
        throw UsageError("falta --registro: la fila de la hoja (1 es la primera bajo los encabezados)");
    const double r = NumberOption("--registro", o.record, Sign::Positive);
    if (r != std::floor(r) || r > 1e6)
        throw UsageError("--registro: \"" + o.record + "\" no es un número de fila");
    const int record = static_cast<int>(r);
    const auto source = opener(o.book, sheet);  // throws Fault with the reason
    if (record > source->RecordCount())
        throw Fault(FaultCode::NoSuchRecord, "El registro " + std::to_string(record) +
                                                 " no existe: la hoja \"" + sheet + "\" tiene " +
                                                 std::to_string(source->RecordCount()) + " registros.");
    c.title = "Curva de gasto: hoja \"" + sheet + "\", registro " + std::to_string(record);
    if (source->HasColumn("z1")) {
        const ChannelInput& ch = o.channel;
        if (!ch.h.empty() || !ch.Bz.empty() || !ch.nz.empty() || !ch.n.empty() || !ch.S.empty())
            throw UsageError(
                "la sección natural del registro trae su rugosidad, pendiente y zona inundable: "
                "quite --rugosidad, --pendiente, --altura, --ancho-zona y --rugosidad-zona");
        const std::string secid = source->HasColumn("SecId") ? source->Get(record, "SecId") : "";
        c.subtitle = "Sección " + secid + " de " + source->Path() + " (Form5, \"(Y?)\")";
        March(c, qs, [&](const std::string& q) {
            const auto s = RunNaturalSection(*source, record, q);
            const std::string& full = s->Get(form5::box::BankfullDischarge).text;
            if (c.marks.empty() && !full.empty()) c.marks.push_back({"Q lleno", full});
            return FromForm5(*s, q);
        });
        return c;
    }
    if (source->HasColumn("Base") && source->HasColumn("Talud")) {
        ChannelInput in = o.channel;
        if (!in.n.empty() || !in.S.empty())
            throw UsageError(
                "el canal del registro trae su rugosidad y su pendiente: quite --rugosidad y --pendiente");
        in.n = source->Get(record, "Rugosidad");
        in.S = source->Get(record, "Pendiente");
        in.b = source->Get(record, "Base");
        in.z = source->Get(record, "Talud");
        c.subtitle = "Canal de " + source->Path() + ": base " + in.b + " m, talud " + in.z + ", n " + in.n +
                     ", S " + in.S + " (Form1, \"Yn?\")";
        March(c, qs, [&](const std::string& q) {
            const auto s = RunChannel(in, Given::Discharge, q);
            MarkBankfull(c, *s);
            return FromForm1(*s, q);
        });
        return c;
    }
    throw Fault(
        FaultCode::NoSuchSheet,
        "La hoja \"" + sheet + "\" no describe secciones (columnas z1, t1, ...) ni canales (Base, Talud).");
}

Curve ChannelCurve(const Options& o, const std::vector<std::string>& qs) {
    Curve c;
    const ChannelInput& in = o.channel;
    c.title = "Curva de gasto de un canal";
    c.subtitle = "Base " + (in.b.empty() ? "0" : in.b) + " m, talud " + (in.z.empty() ? "0" : in.z) + ", n " +
                 in.n + ", S " + in.S + (in.h.empty() ? "" : ", altura " + in.h + " m") + " (Form1, \"Yn?\")";
    March(c, qs, [&](const std::string& q) {
        const auto s = RunChannel(in, Given::Discharge, q);
        MarkBankfull(c, *s);
        return FromForm1(*s, q);
    });
    return c;
}

Curve ConduitCurve(const Options& o, const std::vector<std::string>& qs) {
    Curve c;
    ConduitInput in = o.conduit;
    in.n = o.channel.n;
    in.S = o.channel.S;
    c.title = "Curva de gasto de un conducto circular";
    c.subtitle = "Diámetro " + in.D + " m, n " + in.n + ", S " + in.S + " (Form1, \"Yn?\")";
    March(c, qs, [&](const std::string& q) {
        const auto s = RunConduit(in, Given::Discharge, q);
        const std::string& full = s->Get(form1::box::FullDischarge).text;
        const std::string& max = s->Get(form1::box::MaxDischarge).text;
        if (c.marks.empty() && !full.empty() && !max.empty()) {
            c.marks.push_back({"Q lleno", full});
            c.marks.push_back({"Q Máximo", max});
        }
        return FromForm1(*s, q);
    });
    return c;
}

void PrintText(const Curve& c) {
    std::cout << c.title << "\n" << c.subtitle << "\n";
    for (const auto& [name, q] : c.marks) std::cout << name << ": " << q << " m3/s\n";
    std::cout << "\n";
    TextTable t({"Q m3/s", "Yn m", "Yc m", "V m/s", "Aviso"});
    for (const auto& p : c.points) t.Row({p.q, p.yn, p.yc, p.v, p.notice});
    t.Print(std::cout);
}

void PrintCsv(const Curve& c) {
    std::cout << "caudal_m3s,yn_m,yc_m,v_ms,aviso\n";
    for (const auto& p : c.points)
        std::cout << CsvField(p.q) << "," << CsvField(p.yn) << "," << CsvField(p.yc) << "," << CsvField(p.v)
                  << "," << CsvField(p.notice) << "\n";
}

CurvePlot PlotOf(const Curve& c, const Options& o) {
    CurvePlot plot;
    plot.q_from = ParseNumber(o.from).value_or(0);
    plot.q_to = ParseNumber(o.to).value_or(0);
    plot.title = c.title;
    plot.subtitle = c.subtitle;
    for (const auto& p : c.points) {
        if (!p.ok) continue;
        const auto q = ParseNumber(p.q), yn = ParseNumber(p.yn);
        if (q && yn) plot.points.push_back({*q, *yn});
    }
    for (const auto& [name, q] : c.marks)
        if (const auto v = ParseNumber(q)) plot.marks.push_back({name, *v});
    return plot;
}

int Run(const Options& o) {
    const Format format = ParseFormat(o.format, false);
    const Source source = Which(o);
    CheckChannel(o.channel);
    CheckConduit(o.conduit);
    if (!o.png.empty() && !CanDraw()) throw UsageError("--png: " + CannotDraw());
    const auto qs = Discharges(o);
    Curve c;
    try {
        switch (source) {
            case Source::Record:
                c = RecordCurve(o, qs);
                break;
            case Source::Channel:
                c = ChannelCurve(o, qs);
                break;
            case Source::Conduit:
                c = ConduitCurve(o, qs);
                break;
        }
    } catch (const Fault& f) {
        std::cerr << "cauce curva: " << f.what() << "\n";
        return kExitData;
    }
    if (format == Format::Csv) {
        PrintCsv(c);
    } else {
        PrintText(c);
    }
    std::cout.flush();
    int status = kExitOk;
    std::size_t computed = 0;
    for (const auto& p : c.points) {
        computed += p.ok ? 1 : 0;
        if (p.fault) {
            std::cerr << "cauce curva: Q = " << p.q << ": " << p.notice << "\n";
            status = kExitData;
        }
    }
    if (computed == 0) {
        std::cerr << "cauce curva: ningún caudal dio una profundidad normal"
                  << (c.points.empty() || c.points.front().notice.empty() ? ""
                                                                          : ": " + c.points.front().notice)
                  << "\n";
        status = kExitData;
    }
    if (!o.png.empty()) {
        const CurvePlot plot = PlotOf(c, o);
        if (plot.points.size() < 2) {
            std::cerr << "cauce curva: no se dibuja " << o.png
                      << ": hacen falta al menos dos puntos calculados\n";
            return kExitData;
        }
        const std::string why = WriteCurvePng(plot, o.png);
        if (!why.empty()) {
            std::cerr << "cauce curva: " << why << "\n";
            return kExitData;
        }
    }
    return status;
}

}  // namespace

Command AddCurveCommand(CLI::App& parent) {
    static Options o;
    CLI::App* app =
        parent.add_subcommand("curva", "Curva de gasto (profundidad normal contra caudal) de una sección");
    app->add_option("LIBRO", o.book, "Libro de Excel con la sección (con --hoja y --registro)")
        ->type_name("");
    RecordOptions(app, o.sheet, o.record, "Persecc, Percanal, Zorvena, \"secciones \", Canales");
    ChannelOptions(app, o.channel);
    ConduitOptions(app, o.conduit, false);
    app->add_option("--desde", o.from, "Primer caudal (m3/s)")->type_name("Q");
    app->add_option("--hasta", o.to, "Último caudal (m3/s)")->type_name("Q");
    app->add_option("--paso", o.step, "Incremento del caudal (m3/s)")->type_name("DQ");
    app->add_option("--formato", o.format, "Tabla: texto (por omisión) o csv")->type_name("FORMATO");
    app->add_option("--png", o.png, "Dibuja además la curva en este archivo PNG")->type_name("ARCHIVO");
    return Described(
        app,
        "Cada caudal se calcula en una pantalla nueva, como lo haría una persona: la sección natural de un\n"
        "registro en Form5 (\"(Y?)\"), un canal o un conducto en Form1 (\"Yn?\"). La tabla da Q, Yn, Yc, la\n"
        "velocidad y el mensaje de la pantalla; el gráfico marca el caudal a banca llena (y el máximo de un\n"
        "conducto).",
        {"cauce curva Rios.xlsx --hoja Persecc --registro 3 --desde 5 --hasta 80 --paso 5",
         "cauce curva --base 2 --talud 1.5 --rugosidad 0.015 --pendiente 0.001 --desde 1 --hasta 20 --paso 1 "
         "\\\n              --formato csv --png curva.png",
         "cauce curva --diametro 0.9 --rugosidad 0.013 --pendiente 0.002 --desde 0.05 --hasta 1.2 --paso "
         "0.05"},
        [] { return Run(o); });
}

}  // namespace cauce::cli
