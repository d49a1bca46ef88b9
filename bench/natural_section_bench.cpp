// "(Y?)" on a 15-level natural section, in the banks and overflowing, through the whole screen:
// reading the boxes, the level tables, the normal- and critical-depth marches and the results.
#include <benchmark/benchmark.h>

#include <string>

#include "screens/profile_screen.hpp"
#include "screens/registry.hpp"

namespace {

namespace profile = cauce::screens::profile;

std::unique_ptr<cauce::forms::Screen> FifteenLevelSection(double q) {
    auto s = cauce::screens::MakeScreen("Form2");
    // A V-shaped bed widening to 60 m over 6 m: levels every 0.4 m.
    s->Type(profile::box::SectionCount, "50");
    s->Type(profile::box::SectionNumber, "1");
    for (int j = 1; j <= 15; ++j) {
        const double depth = 0.4 * (j - 1);
        const double width = j == 1 ? 0.0 : 2.0 + 4.0 * depth * (1 + depth / 6);
        s->Type(profile::LevelElevation(j), std::to_string(200 + depth));
        s->Type(profile::LevelWidth(j), std::to_string(width));
    }
    s->Type(profile::box::Roughness, "0.035");
    s->Type(profile::box::Slope, "0.002");
    s->Type(profile::box::Discharge, std::to_string(q));
    s->Type(profile::box::FloodWidth, "150");
    s->Type(profile::box::FloodRoughness, "0.06");
    return s;
}

void BM_SeccionEnBanca(benchmark::State& state) {
    auto s = FifteenLevelSection(120);
    for (auto _ : state) benchmark::DoNotOptimize(s->Click(profile::button::Section));
    if (s->LastError()) state.SkipWithError(s->LastError()->what());
    state.SetLabel("Yn " + s->Get(profile::box::NormalDepth).text);
}
BENCHMARK(BM_SeccionEnBanca)->Unit(benchmark::kMicrosecond);

void BM_SeccionDesbordada(benchmark::State& state) {
    auto s = FifteenLevelSection(2500);
    for (auto _ : state) benchmark::DoNotOptimize(s->Click(profile::button::Section));
    if (s->LastError()) state.SkipWithError(s->LastError()->what());
    state.SetLabel("Yn " + s->Get(profile::box::NormalDepth).text + " " +
                   s->Get(profile::label::Message).text);
}
BENCHMARK(BM_SeccionDesbordada)->Unit(benchmark::kMicrosecond);

}  // namespace
