#include <benchmark/benchmark.h>

#include "Bench/BusyMachine.h"
#include "Core/Screens/PanelScreen.h"

// What an open panel costs the main loop: a tick makes its record anew and compares it with the one on view; in
// between, a second that passes only tells the time. Fifty findings throughout.
namespace ravik {

namespace {

using namespace bench;

struct Opening {
    explicit Opening(int size) {
        const Scene scene(size);
        snapshot = scene.classified();
        snapshot.findings = scene.diagnosed(snapshot);
        snapshot.sampled = true;
        host = scene.host;
    }
    PanelSource source(double secondsLater) const {
        return {.snapshot = snapshot,
                .interval = 5,
                .ramBytes = 16ull << 30,
                .suggestions = suggestions,
                .live = live,
                .rulesOn = 0,
                .host = host,
                .now = now + secondsLater};
    }

    Snapshot snapshot;
    Host host;
    std::vector<Decision> suggestions;
    std::vector<LiveAction> live;
};

void ShowPanel(benchmark::State& state) {
    const Opening opening(static_cast<int>(state.range(0)));
    // The week's line is compared behind the rows.
    PanelMemory memory;
    const PanelScreen shown(opening.source(1), memory);
    memory.week = "This week: 3 fixes";
    if (shown.rows.size() != 3 || opening.snapshot.findings.size() != findings) {
        state.SkipWithError("not the rows that this measures");
    }
    for (auto _ : state) benchmark::DoNotOptimize(PanelScreen(opening.source(1), memory) == shown);
    state.SetComplexityN(state.range(0));
}

void TellTimeInPanel(benchmark::State& state) {
    const Opening opening(static_cast<int>(state.range(0)));
    const PanelScreen shown(opening.source(1), {});
    for (auto _ : state) {
        PanelScreen fresh = shown;
        benchmark::DoNotOptimize(fresh.tellTime(opening.source(2)));
        benchmark::DoNotOptimize(fresh == shown);
    }
}

BENCHMARK(ShowPanel)->Arg(500)->Arg(2000)->Arg(8000)->Unit(benchmark::kMicrosecond)->Complexity(benchmark::oN);
BENCHMARK(TellTimeInPanel)->Arg(500)->Unit(benchmark::kMicrosecond);

}  // namespace

}  // namespace ravik
