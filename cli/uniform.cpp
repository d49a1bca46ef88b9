#include "cli/uniform.hpp"

#include "screens/registry.hpp"

namespace cauce::cli {

namespace {

void TypeAll(forms::Screen& s, std::initializer_list<std::pair<const char*, const std::string*>> boxes) {
    for (const auto& [box, text] : boxes) s.Type(box, *text);
}

ShownRow Row(const forms::Screen& s, const char* label, std::initializer_list<const char*> boxes) {
    ShownRow r{s.Get(label).text, {}};
    for (const char* b : boxes) r.values.push_back(s.Get(b).text);
    return r;
}

bool Blank(const ShownRow& r) {
    for (const auto& v : r.values)
        if (!v.empty()) return false;
    return true;
}

}  // namespace

std::unique_ptr<forms::Screen> RunChannel(const ChannelInput& in, Given given, const std::string& value) {
    auto s = screens::MakeScreen("Form1");
    s->Click("Command1");  // TRAPEZOIDAL: its layout, the boxes cleared
    TypeAll(*s, {{"Text1", &in.n},
                 {"Text2", &in.S},
                 {"Text3", &in.b},
                 {"Text4", &in.z},
                 {"Text5", &in.h},
                 {"Text6", &in.Bz},
                 {"Text7", &in.nz}});
    if (given == Given::Discharge) {
        s->Type("Text8", value);
        s->Click("Command4");  // "Yn?"
    } else {
        s->Type("Text9", value);
        s->Click("Command5");  // "Q ?"
    }
    return s;
}

std::unique_ptr<forms::Screen> RunConduit(const ConduitInput& in, Given given, const std::string& value) {
    auto s = screens::MakeScreen("Form1");
    s->Click("Command2");  // CIRCULAR
    TypeAll(*s, {{"Text1", &in.n}, {"Text2", &in.S}, {"Text3", &in.D}});
    if (given == Given::Discharge) {
        s->Type("Text8", value);
        s->Click("Command6");  // "Yn?"
    } else {
        s->Type("Text9", value);
        s->Click("Command7");  // "Q ?"
    }
    return s;
}

Shown ShownOnForm1(const forms::Screen& s, bool conduit, Given given) {
    Shown out;
    out.section = conduit ? s.Get("Command2").text : s.Get("Command1").text;
    out.message = s.Get("Label21").text;
    if (s.LastError()) out.error = *s.LastError();
    std::vector<ShownRow> rows;
    if (conduit) {
        out.data = {Row(s, "Label1", {"Text1"}), Row(s, "Label2", {"Text2"}), Row(s, "Label3", {"Text3"})};
        rows = {Row(s, "Label8", {"Text8"}),   Row(s, "Label9", {"Text9"}),   Row(s, "Label10", {"Text10"}),
                Row(s, "Label11", {"Text11"}), Row(s, "Label22", {"Text26"}), Row(s, "Label12", {"Text12"}),
                Row(s, "Label13", {"Text13"}), Row(s, "Label4", {"Text4"}),   Row(s, "Label5", {"Text5"}),
                Row(s, "Label6", {"Text6"}),   Row(s, "Label7", {"Text7"}),   Row(s, "Label14", {"Text14"})};
    } else {
        // The flood zone writes the three column headings; without it the first column stands alone.
        for (const char* h : {"Label18", "Label19", "Label20"})
            if (!s.Get(h).text.empty()) out.columns.push_back(s.Get(h).text);
        auto data = [&](const char* group, const char* label, const char* box) {
            ShownRow r = Row(s, label, {box});
            r.label = std::string(s.Get(group).text) + ": " + r.label;
            return r;
        };
        out.data = {data("Label15", "Label1", "Text1"), data("Label15", "Label2", "Text2"),
                    data("Label15", "Label3", "Text3"), data("Label15", "Label4", "Text4"),
                    data("Label15", "Label5", "Text5"), data("Label16", "Label6", "Text6"),
                    data("Label16", "Label7", "Text7")};
        const bool flood = !out.columns.empty();
        auto row = [&](const char* label, const char* whole, const char* main, const char* zone) {
            return flood ? Row(s, label, {whole, main, zone}) : Row(s, label, {whole});
        };
        rows = {row("Label8", "Text8", "Text15", "Text19"),
                Row(s, "Label9", {"Text9"}),
                row("Label24", "Text24", "Text16", "Text20"),
                row("Label10", "Text10", "Text17", "Text21"),
                row("Label11", "Text11", "Text18", "Text22"),
                row("Label22", "Text26", "Text27", "Text23"),
                Row(s, "Label12", {"Text12"}),
                Row(s, "Label13", {"Text13"}),
                Row(s, "Label14", {"Text14"})};
    }
    for (auto& r : rows)
        if (!Blank(r) && !r.label.empty()) out.results.push_back(std::move(r));
    const std::string& answer = s.Get(given == Given::Discharge ? "Text9" : "Text8").text;
    out.answered = out.error.empty() && !answer.empty();
    return out;
}

std::unique_ptr<forms::Screen> RunNaturalSection(const forms::RecordSource& source, int record,
                                                 const std::string& discharge) {
    auto s = screens::MakeScreen("Form5");
    for (const auto& c : s->Controls()) {
        if (c.kind != forms::Kind::TextBox || c.column.empty()) continue;
        std::string column = c.column;
        if (column == "Si" && !source.HasColumn("Si") && source.HasColumn("So")) column = "So";
        if (source.HasColumn(column)) s->Type(c.name, source.Get(record, column));
    }
    s->Type("Text95", discharge);
    s->Click("Command2");
    return s;
}

}  // namespace cauce::cli
