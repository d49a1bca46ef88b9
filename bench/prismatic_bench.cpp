// "Yn?" on Form1 through the whole screen (reading the boxes, the search, the results and the
// critical depth): a circular conduit, whose 1 mm march is the longest search of the screen, and a
// trapezoid, within its banks and overflowing into the flood zone.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>
#include <utility>

#include "screens/form1.hpp"
#include "screens/registry.hpp"

namespace {

namespace form1 = cauce::screens::form1;

void Run(benchmark::State& state, cauce::forms::Screen& s, std::string_view button) {
    for (auto _ : state) benchmark::DoNotOptimize(s.Click(button));
    if (s.LastError()) state.SkipWithError(s.LastError()->what());
    state.SetLabel("Yn " + s.Get(form1::box::NormalDepth).text + ", Yc " +
                   s.Get(form1::box::CriticalDepth).text);
}

// Conduit D 1.5 m, n 0.013, S 0.001: the discharge as a fraction (percent) of the full discharge.
// Below half full the march walks up from 1 mm, so its length grows with the depth.
void BM_ConduitYn(benchmark::State& state) {
    auto s = cauce::screens::MakeScreen("Form1");
    s->Click(form1::button::Circular);
    s->Type(form1::box::Roughness, "0.013");
    s->Type(form1::box::Slope, "0.001");
    s->Type(form1::box::Diameter, "1.5");
    const double qlleno = 0.3117 / 0.013 * std::pow(1.5, 8.0 / 3.0) * std::sqrt(0.001);
    s->Type(form1::box::Discharge, std::to_string(qlleno * static_cast<double>(state.range(0)) / 100));
    Run(state, *s, form1::button::ConduitNormalDepth);
}
BENCHMARK(BM_ConduitYn)->Arg(10)->Arg(45)->Arg(100)->Unit(benchmark::kMicrosecond);

// Trapezoid b 3, z 1.5, n 0.015, S 0.0008, banks 1.5 m high, flood zone 40 m wide (nz 0.04).
void BM_TrapezoidYn(benchmark::State& state) {
    auto s = cauce::screens::MakeScreen("Form1");
    s->Click(form1::button::Trapezoidal);
    for (auto [box, text] : {std::pair<std::string_view, const char*>{form1::box::Roughness, "0.015"},
                             {form1::box::Slope, "0.0008"},
                             {form1::box::Base, "3"},
                             {form1::box::SideSlope, "1.5"},
                             {form1::box::BankHeight, "1.5"},
                             {form1::box::FloodWidth, "40"},
                             {form1::box::FloodRoughness, "0.04"}})
        s->Type(box, text);
    s->Type(form1::box::Discharge, std::to_string(state.range(0)));
    Run(state, *s, form1::button::NormalDepth);
}
BENCHMARK(BM_TrapezoidYn)->Arg(10)->Arg(60)->Unit(benchmark::kMicrosecond);

}  // namespace
