// A section from survey points: checking the ground, its profile over the depth, the choice of 15
// levels and their differences, for natural surveys of 200 and 2000 points (every point at its own
// elevation, the worst case for the choice).
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "hydraulics/survey/survey.hpp"

namespace {

std::vector<cauce::survey::Point> NaturalSurvey(int n) {
    std::vector<cauce::survey::Point> g;
    for (int i = 0; i < n; ++i) {
        const double x = 60.0 * i / (n - 1);
        const double u = (x - 30) / 30;
        const double z = 100 + 6 * u * u + 0.8 * std::sin(x * 0.9) + 0.3 * std::cos(x * 2.3);
        g.push_back({x, std::round(z * 1000) / 1000, i + 1});
    }
    return g;
}

void BM_SeccionDesdeLevantamiento(benchmark::State& state) {
    const auto ground = NaturalSurvey(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(cauce::survey::SectionFromSurvey(ground));
}
BENCHMARK(BM_SeccionDesdeLevantamiento)->Arg(200)->Arg(2000)->Unit(benchmark::kMillisecond);

}  // namespace
