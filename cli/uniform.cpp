#include "cli/uniform.hpp"

#include "screens/form1.hpp"
#include "screens/form5.hpp"
#include "screens/registry.hpp"

namespace cauce::cli {

namespace {

using forms::ControlName;
namespace box = screens::form1::box;
namespace label = screens::form1::label;
namespace button = screens::form1::button;

void TypeAll(forms::Screen& s, std::initializer_list<std::pair<ControlName, const std::string*>> boxes) {
    for (const auto& [box, text] : boxes) s.Type(box, *text);
}

ShownRow Row(const forms::Screen& s, ControlName label, std::initializer_list<ControlName> boxes) {
    ShownRow r{s.Get(label).text, {}};
    for (ControlName b : boxes) r.values.push_back(s.Get(b).text);
    return r;
}

// The value given in its box, then the button that computes the other: a depth for a discharge or a
// discharge for a depth.
void Ask(forms::Screen& s, Given given, const std::string& value, ControlName for_depth,
         ControlName for_discharge) {
    const bool discharge = given == Given::Discharge;
    s.Type(discharge ? box::Discharge : box::NormalDepth, value);
    s.Click(discharge ? for_depth : for_discharge);
}

bool Blank(const ShownRow& r) {
    for (const auto& v : r.values)
        if (!v.empty()) return false;
    return true;
}

}  // namespace

std::unique_ptr<forms::Screen> RunChannel(const ChannelInput& in, Given given, const std::string& value) {
    auto s = screens::MakeScreen("Form1");
    s->Click(button::Trapezoidal);  // its layout, the boxes cleared
    TypeAll(*s, {{box::Roughness, &in.n},
                 {box::Slope, &in.S},
                 {box::Base, &in.b},
                 {box::SideSlope, &in.z},
                 {box::BankHeight, &in.h},
                 {box::FloodWidth, &in.Bz},
                 {box::FloodRoughness, &in.nz}});
    Ask(*s, given, value, button::NormalDepth, button::Discharge);
    return s;
}

std::unique_ptr<forms::Screen> RunConduit(const ConduitInput& in, Given given, const std::string& value) {
    auto s = screens::MakeScreen("Form1");
    s->Click(button::Circular);
    TypeAll(*s, {{box::Roughness, &in.n}, {box::Slope, &in.S}, {box::Diameter, &in.D}});
    Ask(*s, given, value, button::ConduitNormalDepth, button::ConduitDischarge);
    return s;
}

Shown ShownOnForm1(const forms::Screen& s, bool conduit, Given given) {
    Shown out;
    out.section = conduit ? s.Get(button::Circular).text : s.Get(button::Trapezoidal).text;
    out.message = s.Get(label::Message).text;
    if (s.LastError()) out.error = s.LastError()->what();
    std::vector<ShownRow> rows;
    if (conduit) {
        out.data = {Row(s, label::Roughness, {box::Roughness}), Row(s, label::Slope, {box::Slope}),
                    Row(s, label::Diameter, {box::Diameter})};
        rows = {Row(s, label::Discharge, {box::Discharge}),
                Row(s, label::NormalDepth, {box::NormalDepth}),
                Row(s, label::TopWidth, {box::TopWidth}),
                Row(s, label::Velocity, {box::Velocity}),
                Row(s, label::Froude, {box::Froude}),
                Row(s, label::CriticalDepth, {box::CriticalDepth}),
                Row(s, label::CriticalVelocity, {box::CriticalVelocity}),
                Row(s, label::FullDischarge, {box::FullDischarge}),
                Row(s, label::MaxDischarge, {box::MaxDischarge}),
                Row(s, label::DepthRatio, {box::DepthRatio}),
                Row(s, label::VelocityRatio, {box::VelocityRatio}),
                Row(s, label::DischargeRatio, {box::DischargeRatio})};
    } else {
        // The flood zone writes the three column headings; without it the first column stands alone.
        for (ControlName h : {label::WholeColumn, label::MainColumn, label::FloodColumn})
            if (!s.Get(h).text.empty()) out.columns.push_back(s.Get(h).text);
        auto data = [&](ControlName group, ControlName label, ControlName box) {
            ShownRow r = Row(s, label, {box});
            r.label = std::string(s.Get(group).text) + ": " + r.label;
            return r;
        };
        out.data = {data(label::MainChannel, label::Roughness, box::Roughness),
                    data(label::MainChannel, label::Slope, box::Slope),
                    data(label::MainChannel, label::Base, box::Base),
                    data(label::MainChannel, label::SideSlope, box::SideSlope),
                    data(label::MainChannel, label::BankHeight, box::BankHeight),
                    data(label::FloodZone, label::FloodWidth, box::FloodWidth),
                    data(label::FloodZone, label::FloodRoughness, box::FloodRoughness)};
        const bool flood = !out.columns.empty();
        auto row = [&](ControlName label, ControlName whole, ControlName main, ControlName zone) {
            return flood ? Row(s, label, {whole, main, zone}) : Row(s, label, {whole});
        };
        rows = {row(label::Discharge, box::Discharge, box::MainDischarge, box::FloodDischarge),
                Row(s, label::NormalDepth, {box::NormalDepth}),
                row(label::Area, box::Area, box::MainArea, box::FloodArea),
                row(label::TopWidth, box::TopWidth, box::MainTopWidth, box::FloodTopWidth),
                row(label::Velocity, box::Velocity, box::MainVelocity, box::FloodVelocity),
                row(label::Froude, box::Froude, box::MainFroude, box::FloodFroude),
                Row(s, label::CriticalDepth, {box::CriticalDepth}),
                Row(s, label::CriticalVelocity, {box::CriticalVelocity}),
                Row(s, label::BankfullDischarge, {box::BankfullDischarge})};
    }
    for (auto& r : rows)
        if (!Blank(r) && !r.label.empty()) out.results.push_back(std::move(r));
    const std::string& answer = s.Get(given == Given::Discharge ? box::NormalDepth : box::Discharge).text;
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
    s->Type(screens::form5::box::Discharge, discharge);
    s->Click(screens::form5::button::Section);
    return s;
}

}  // namespace cauce::cli
