// "Perfiles" on a 15-section reach: five mild, five steep and five mild rectangular sections 80 m
// apart (M1, S1, S2, M2 with the raised start), after "(Y?)" on each section. Measured through the
// whole screen (reading the boxes, the run, the table) and as the bare run on the screen's state.
#include <benchmark/benchmark.h>

#include <string>

#include "hydraulics/profiles/profile.hpp"
#include "screens/profile_screen.hpp"
#include "screens/registry.hpp"

namespace {

namespace profile = cauce::screens::profile;

// Sections 1 (upstream) to 15, each computed with "(Y?)"; the one numbered N comes last.
std::unique_ptr<cauce::forms::Screen> ReadyReach() {
    auto s = cauce::screens::MakeScreen("Form2");
    const auto slope = [](int i) { return i >= 6 && i <= 10 ? 0.02 : 0.001; };
    for (int i = 1; i <= 15; ++i) {
        double bed = 100.0012;
        for (int j = i + 1; j <= 15; ++j) bed += slope(j) * 80;
        s->Type(profile::box::SectionCount, "15");
        s->Type(profile::box::SectionNumber, std::to_string(i));
        s->Type(profile::LevelElevation(1), std::to_string(bed));
        s->Type(profile::LevelWidth(1), "3");
        s->Type(profile::LevelElevation(2), std::to_string(bed + 3));
        s->Type(profile::LevelWidth(2), "3");
        s->Type(profile::box::Roughness, "0.015");
        s->Type(profile::box::Slope, std::to_string(slope(i)));
        s->Type(profile::box::Discharge, "6");
        s->Type(profile::TableChainage(i), std::to_string(80.0 * (i - 1)));
        s->Click(profile::button::Section);
    }
    s->Type(profile::box::StartDepth, "1.6");
    return s;
}

void BM_Perfiles15Secciones(benchmark::State& state) {
    auto s = ReadyReach();
    for (auto _ : state) benchmark::DoNotOptimize(s->Click(profile::button::Profiles));
    if (s->LastError()) state.SkipWithError(s->LastError()->what());
    std::string types;
    for (int j = 1; j <= 15; ++j) types += s->Get(profile::TableType(j)).text + " ";
    state.SetLabel(types);
}
BENCHMARK(BM_Perfiles15Secciones)->Unit(benchmark::kMicrosecond);

void BM_ProfileRun15Sections(benchmark::State& state) {
    auto s = ReadyReach();
    s->Click(profile::button::Profiles);
    cauce::natural::State st = static_cast<const cauce::screens::ProfileScreen&>(*s).State();
    for (auto _ : state) {
        cauce::profiles::SetStartDepth(st, 1.6);
        benchmark::DoNotOptimize(cauce::profiles::ProfileRun(st));
    }
}
BENCHMARK(BM_ProfileRun15Sections)->Unit(benchmark::kMicrosecond);

}  // namespace
