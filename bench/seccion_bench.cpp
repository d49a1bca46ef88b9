// "(Y?)" on a 15-level natural section, in the banks and overflowing, through the whole screen:
// reading the boxes, the level tables, the normal- and critical-depth marches and the results.
#include <benchmark/benchmark.h>

#include <string>

#include "screens/registry.hpp"

namespace {

std::unique_ptr<cauce::forms::Screen> FifteenLevelSection(double q) {
    auto s = cauce::screens::MakeScreen("Form2");
    // A V-shaped bed widening to 60 m over 6 m: levels every 0.4 m.
    s->Type("Text61", "50");
    s->Type("Text62", "1");
    for (int j = 1; j <= 15; ++j) {
        const double depth = 0.4 * (j - 1);
        const double width = j == 1 ? 0.0 : 2.0 + 4.0 * depth * (1 + depth / 6);
        s->Type("Text" + std::to_string(2 * j - 1), std::to_string(200 + depth));
        s->Type("Text" + std::to_string(2 * j), std::to_string(width));
    }
    s->Type("Text93", "0.035");
    s->Type("Text94", "0.002");
    s->Type("Text95", std::to_string(q));
    s->Type("Text96", "150");
    s->Type("Text97", "0.06");
    return s;
}

void BM_SeccionEnBanca(benchmark::State& state) {
    auto s = FifteenLevelSection(120);
    for (auto _ : state) benchmark::DoNotOptimize(s->Click("Command2"));
    if (s->LastError()) state.SkipWithError(s->LastError()->c_str());
    state.SetLabel("Yn " + s->Get("Text99").text);
}
BENCHMARK(BM_SeccionEnBanca)->Unit(benchmark::kMicrosecond);

void BM_SeccionDesbordada(benchmark::State& state) {
    auto s = FifteenLevelSection(2500);
    for (auto _ : state) benchmark::DoNotOptimize(s->Click("Command2"));
    if (s->LastError()) state.SkipWithError(s->LastError()->c_str());
    state.SetLabel("Yn " + s->Get("Text99").text + " " + s->Get("Label31").text);
}
BENCHMARK(BM_SeccionDesbordada)->Unit(benchmark::kMicrosecond);

}  // namespace
