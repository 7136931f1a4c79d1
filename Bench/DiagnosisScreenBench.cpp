#include <benchmark/benchmark.h>

#include "Bench/BusyMachine.h"
#include "Core/Screens/DiagnosisScreen.h"
#include "Core/Screens/MapScreen.h"

// What a tick costs the Diagnosis screen on the main loop: its records made anew and compared with those on view.
// Fifty findings throughout. A frame at 60 Hz lasts 16.7 ms; a quarter of it is the most that this may take.
namespace ravik {

namespace {

using namespace bench;

struct Tick {
    explicit Tick(int size, std::uint64_t grown = 0) {
        const Scene scene(size);
        snapshot = scene.classified();
        snapshot.findings = scene.diagnosed(snapshot);
        snapshot.sampled = true;
        if (grown) snapshot.findings.back().gainBytes += grown;
        host = scene.host;
    }

    Snapshot snapshot;
    Host host;
};

struct Shown {
    DiagnosisScreen screen;
    MapScreen map;

    Shown(const Tick& tick, const DiagnosisState& state) {
        const ProcessIndex index(tick.snapshot.processes);
        const ScreenInput input{tick.snapshot, index, tick.host, 16ull << 30, now};
        const MemoryPicture picture = DiagnosisScreen::picture(input);
        screen = DiagnosisScreen(input, picture, state, false, {});
        if (state.mode == DiagnosisState::Mode::map) map = MapScreen(input, picture, state);
    }
    friend bool operator==(const Shown&, const Shown&) = default;
};

void ShowDiagnosis(benchmark::State& state, DiagnosisState::Mode mode) {
    // The last of the findings differs, so that the comparison goes to the end.
    const Tick before(static_cast<int>(state.range(0)));
    const Tick after(static_cast<int>(state.range(0)), 1ull << 20);
    DiagnosisState memory;
    memory.mode = mode;
    memory.selected = before.snapshot.findings.front().id;
    memory.selectedArc = "leftovers";
    const Shown shown(before, memory);
    memory.cardOrder = shown.screen.cardIds();
    memory.arcOrder = shown.map.arcIds();
    if (before.snapshot.findings.size() != findings || shown.screen.state != DiagnosisScreen::State::findings) {
        state.SkipWithError("not the findings that this measures");
    }
    if (Shown(after, memory) == shown) state.SkipWithError("nothing differs");
    for (auto _ : state) benchmark::DoNotOptimize(Shown(after, memory) == shown);
    state.SetComplexityN(state.range(0));
}

void sizes(benchmark::internal::Benchmark* bench) {
    bench->Arg(500)->Arg(2000)->Arg(8000)->Unit(benchmark::kMicrosecond)->Complexity(benchmark::oN);
}

BENCHMARK_CAPTURE(ShowDiagnosis, cards, DiagnosisState::Mode::cards)->Apply(sizes);
BENCHMARK_CAPTURE(ShowDiagnosis, map, DiagnosisState::Mode::map)->Apply(sizes);

}  // namespace

}  // namespace ravik
