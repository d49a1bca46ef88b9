// What the search benchmarks share: timing a search on a state, Newton's method for the plain root
// finders they are compared with, and registering a search literal (the march) and fast.
#pragma once

#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

namespace cauce::bench {

// Times search on st; the label names the value found ("Yn 0.710000").
template <class St, class Search, class Value>
void TimeSearch(benchmark::State& state, St& st, const std::string& name, Search search, Value value) {
    for (auto _ : state) {
        search(st);
        benchmark::DoNotOptimize(value(st) + 0.0);
    }
    state.SetLabel(name + " " + std::to_string(value(st)));
}

// Newton's method from y, next giving each following estimate, until a step is below 1e-4 m (a tenth
// of the marches' step) or after 50 steps.
template <class Next>
double Newton(double y, const Next& next) {
    for (int it = 0; it < 50; ++it) {
        const double following = next(y);
        const double dy = following - y;
        y = following;
        if (std::fabs(dy) < 1e-4) break;
    }
    return y;
}

// Times Newton's method from start; the label names the root.
template <class Next>
void TimeNewton(benchmark::State& state, const std::string& name, double start, const Next& next) {
    double y = 0;
    for (auto _ : state) {
        y = Newton(start, next);
        benchmark::DoNotOptimize(y);
    }
    state.SetLabel(name + " " + std::to_string(y));
}

// Registers run(state, literal) as BM_<name>_Literal and BM_<name>_Rapido, and run_newton, when
// given, as BM_<name>_Newton, in microseconds.
template <class Run>
void LiteralAndFast(const std::string& name, Run run, void (*run_newton)(benchmark::State&) = nullptr) {
    benchmark::RegisterBenchmark(("BM_" + name + "_Literal").c_str(), [run](benchmark::State& s) {
        run(s, true);
    })->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark(("BM_" + name + "_Rapido").c_str(), [run](benchmark::State& s) {
        run(s, false);
    })->Unit(benchmark::kMicrosecond);
    if (run_newton)
        benchmark::RegisterBenchmark(("BM_" + name + "_Newton").c_str(), run_newton)
            ->Unit(benchmark::kMicrosecond);
}

}  // namespace cauce::bench
