// "Yn?" on Form1 through the whole screen (reading the boxes, the search, the results and the
// critical depth): a circular conduit, whose 1 mm march is the longest search of the screen, and a
// trapezoid, within its banks and overflowing into the flood zone.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>
#include <utility>

#include "screens/registry.hpp"

namespace {

void Run(benchmark::State& state, cauce::forms::Screen& s, const char* button) {
    for (auto _ : state) benchmark::DoNotOptimize(s.Click(button));
    if (s.LastError()) state.SkipWithError(s.LastError()->c_str());
    state.SetLabel("Yn " + s.Get("Text9").text + ", Yc " + s.Get("Text12").text);
}

// Conduit D 1.5 m, n 0.013, S 0.001: the discharge as a fraction (percent) of the full discharge.
// Below half full the march walks up from 1 mm, so its length grows with the depth.
void BM_ConduitYn(benchmark::State& state) {
    auto s = cauce::screens::MakeScreen("Form1");
    s->Click("Command2");
    s->Type("Text1", "0.013");
    s->Type("Text2", "0.001");
    s->Type("Text3", "1.5");
    const double qlleno = 0.3117 / 0.013 * std::pow(1.5, 8.0 / 3.0) * std::sqrt(0.001);
    s->Type("Text8", std::to_string(qlleno * static_cast<double>(state.range(0)) / 100));
    Run(state, *s, "Command6");
}
BENCHMARK(BM_ConduitYn)->Arg(10)->Arg(45)->Arg(100)->Unit(benchmark::kMicrosecond);

// Trapezoid b 3, z 1.5, n 0.015, S 0.0008, banks 1.5 m high, flood zone 40 m wide (nz 0.04).
void BM_TrapezoidYn(benchmark::State& state) {
    auto s = cauce::screens::MakeScreen("Form1");
    s->Click("Command1");
    for (auto [box, text] : {std::pair{"Text1", "0.015"},
                             {"Text2", "0.0008"},
                             {"Text3", "3"},
                             {"Text4", "1.5"},
                             {"Text5", "1.5"},
                             {"Text6", "40"},
                             {"Text7", "0.04"}})
        s->Type(box, text);
    s->Type("Text8", std::to_string(state.range(0)));
    Run(state, *s, "Command4");
}
BENCHMARK(BM_TrapezoidYn)->Arg(10)->Arg(60)->Unit(benchmark::kMicrosecond);

}  // namespace
