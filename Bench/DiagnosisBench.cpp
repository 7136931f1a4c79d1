#include <benchmark/benchmark.h>

#include "Bench/BusyMachine.h"

// What one tick spends on judging what it has read, at a small, a large and a very large process list. The number of
// findings is the same throughout, so that the growth is that of the list alone.
namespace ravik {

namespace {

using namespace bench;

void sizes(benchmark::internal::Benchmark* bench) {
    bench->Arg(500)->Arg(2000)->Arg(8000)->Unit(benchmark::kMicrosecond)->Complexity(benchmark::oN);
}

void Classify(benchmark::State& state) {
    const Scene scene(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(scene.classified());
    state.SetComplexityN(state.range(0));
}

void Diagnose(benchmark::State& state) {
    const Scene scene(static_cast<int>(state.range(0)));
    const Snapshot snap = scene.classified();
    if (scene.diagnosed(snap).size() != findings) state.SkipWithError("not the findings that this measures");
    for (auto _ : state) benchmark::DoNotOptimize(scene.diagnosed(snap));
    state.SetComplexityN(state.range(0));
}

void ClassifyAndDiagnose(benchmark::State& state) {
    const Scene scene(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(scene.diagnosed(scene.classified()));
    state.SetComplexityN(state.range(0));
}

/// One chain of processes, each the parent of the next and each in a group of two by turns: every tree overlaps.
void DiagnoseChain(benchmark::State& state) {
    Scene scene(0);
    scene.procs.clear();
    for (int at = 0; at < state.range(0); ++at) {
        scene.procs.push_back(proc(100 + at, 99 + at, at % 2 ? "/home/me/bin/odd" : "/home/me/bin/even"));
        scene.procs.back().footprintBytes = 256ull << 20;
    }
    const Snapshot snap = scene.classified();
    for (auto _ : state) benchmark::DoNotOptimize(scene.diagnosed(snap));
    state.SetComplexityN(state.range(0));
}

BENCHMARK(Classify)->Apply(sizes);
BENCHMARK(Diagnose)->Apply(sizes);
BENCHMARK(ClassifyAndDiagnose)->Apply(sizes);
BENCHMARK(DiagnoseChain)->Apply(sizes);

}  // namespace

}  // namespace ravik
