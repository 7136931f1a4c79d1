// What a tick spends on the Autopilot's choices and on scoring them, beside one scan of as many processes in the same
// run. It should stay below a tenth.

#include <algorithm>
#include <csignal>
#include <ctime>
#include <vector>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "Core/Autopilot/Engine.h"
#include "Core/Autopilot/ShadowScorer.h"
#include "Core/Diagnosis/Classifier.h"
#include "Core/Watch/ProcessScanner.h"
#include "Platform/Linux/Clock.h"
#include "Platform/Linux/LinuxProcessTable.h"

namespace ravik {

namespace {

constexpr Time now = 1'700'000'000;
constexpr int processes = 2000;
constexpr int groups = 300;
constexpr int leftovers = 20;

/// An hour ahead, so that processes which have just been started count as old and are not read closely.
class AheadClock : public platform::SystemClock {
public:
    Time now() const override { return SystemClock::now() + 3600; }
};

double secondsUsed() {
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

/// Processes that sleep until their owner goes.
class Sleepers {
public:
    explicit Sleepers(int count) {
        for (int started = 0; started < count; ++started) {
            const pid_t pid = fork();
            if (pid == 0) {
                prctl(PR_SET_PDEATHSIG, SIGKILL);
                for (;;) pause();
            }
            if (pid > 0) m_pids.push_back(pid);
        }
    }
    ~Sleepers() {
        for (const pid_t pid : m_pids) kill(pid, SIGKILL);
        for (const pid_t pid : m_pids) waitpid(pid, nullptr, 0);
    }
    Sleepers(const Sleepers&) = delete;
    Sleepers& operator=(const Sleepers&) = delete;

private:
    std::vector<pid_t> m_pids;
};

/// CPU seconds of a warm scan of this many processes, the median of several.
double scanSeconds() {
    static const double median = [] {
        const Sleepers sleepers(processes);
        AheadClock clock;
        platform::LinuxProcessTable table(clock);
        ProcessScanner scanner(table, clock);
        std::vector<double> figures;
        for (int round = 0; round < 40; ++round) {
            const double begin = secondsUsed();
            benchmark::DoNotOptimize(scanner.scan());
            if (round >= 15) figures.push_back(secondsUsed() - begin);
        }
        std::ranges::sort(figures);
        return figures[figures.size() / 2];
    }();
    return median;
}

/// A machine that is short of memory and busy, on which every so many groups get a decision: half of those are idle,
/// half work in the background. The others do a little.
struct Desk {
    Host host;
    Snapshot snapshot;
    Engine engine;
    Engine::History history;

    explicit Desk(int every) {
        host.kind = HostKind::linux;
        host.uid = 1000;
        for (int number = 0; number < processes; ++number) {
            Proc proc;
            proc.id = 100 + number;
            proc.uid = 1000;
            proc.started = now - 100'000;
            proc.footprintBytes = 40ull << 20;
            if (number < leftovers) {
                proc.ppid = 1;
                proc.command = Text(fmt::format("/home/me/.npm/_npx/1/mcp-server-{}", number));
            } else {
                proc.ppid = 99;
                proc.app = Text(fmt::format("Application {}", number % groups));
                proc.command =
                    Text(fmt::format("/opt/vendor/application-{}/bin/application --type=renderer "
                                     "--enable-crash-reporter --lang=en-GB",
                                     number % groups));
                const int group = number % groups;
                proc.cpuPercent = group % every != 0 ? 0.5 : group / every % 2 ? 10 : 0;
            }
            proc.name = fmt::format("application-{}", number % groups);
            snapshot.processes.push_back(std::move(proc));
        }
        snapshot.stats.memoryFreePercent = 10;
        snapshot.stats.cpuCount = 8;
        snapshot.stats.loadAverage = 20;
        snapshot.groups = Classifier::groups(snapshot.processes, host);
        snapshot.orphans.assign(snapshot.processes.begin(), snapshot.processes.begin() + leftovers);
        snapshot.sessions = Classifier::sessions(ProcessIndex(snapshot.processes), snapshot.orphans, host);
        for (const AppGroup& group : snapshot.groups) {
            history.lastBusy[group.id] = now - 7200;
            history.lastFocused[group.id] = now - 7200;
        }
    }
    std::vector<Decision> decide() const { return engine.decide(snapshot, history, {}, host, now, now); }
};

void DecideAndScore(benchmark::State& state) {
    const double scan = scanSeconds();
    const Desk desk(static_cast<int>(state.range(0)));
    ShadowScorer scorer;
    const std::size_t decided = desk.decide().size();
    if (decided != groups / static_cast<std::size_t>(state.range(0)) + 1)
        state.SkipWithError("not the decisions that this measures");
    // The first tick opens them all; from then on each is followed.
    scorer.step(desk.decide(), desk.snapshot, {}, now);
    const double begin = secondsUsed();
    for (auto _ : state) benchmark::DoNotOptimize(scorer.step(desk.decide(), desk.snapshot, {}, now + 5));
    const double tick = (secondsUsed() - begin) / static_cast<double>(state.iterations());
    state.counters["scan_us"] = scan * 1e6;
    state.counters["of_a_scan"] = tick / scan;
    state.counters["decisions"] = static_cast<double>(decided);
    if (tick > scan / 10) state.SetLabel("more than a tenth of a scan");
}

// Each tenth group is a bad day; every one is the worst there can be.
BENCHMARK(DecideAndScore)->Arg(10)->Arg(1)->ArgName("every")->Unit(benchmark::kMicrosecond);

}  // namespace

}  // namespace ravik
