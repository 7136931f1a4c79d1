// One whole tick, part by part: the scan, and everything else that a tick does with what was scanned.

#include <filesystem>

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Bench/Sleepers.h"
#include "Core/Record/Log.h"
#include "Core/Watch/ProcessScanner.h"
#include "Core/Watch/Reading.h"
#include "Core/Watch/SystemStatsSampler.h"
#include "Core/Watch/TickLines.h"
#include "Platform/Linux/AppNames.h"
#include "Platform/Linux/LinuxMachine.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Platform/Linux/LinuxServices.h"

namespace ravik {

namespace {

constexpr int rounds = 25;
constexpr int warmUp = 13;
constexpr int judgedFrom = 2000;

struct Parts {
    std::vector<double> scan;
    std::vector<double> sample;
    std::vector<double> services;
    std::vector<double> diagnose;
    std::vector<double> publish;
};

/// What a tick leaves behind on the main loop: the shared picture, the trend, the log's lines.
class Publisher {
public:
    explicit Publisher(const std::filesystem::path& folder, const Clock& clock)
        : m_log(
              {.folder = folder, .formerFolder = {}, .now = [&clock] { return clock.now(); }, .session = "0123ABCD"}) {}

    void publish(Snapshot snapshot, const Thresholds& limits) {
        m_snapshot = std::make_shared<const Snapshot>(std::move(snapshot));
        m_trend.record(*m_snapshot, limits);
        m_log.event("tick", TickLines::tick(*m_snapshot));
        if (!m_snapshot->findings.empty()) m_log.event("diagnosis", TickLines::diagnosis(*m_snapshot));
        if (const auto line = TickLines::self(*m_snapshot, getpid())) m_log.event("self", *line);
    }

private:
    Log m_log;
    std::shared_ptr<const Snapshot> m_snapshot;
    Trend m_trend;
};

Parts measure(const bench::Sleepers& sleepers, const std::filesystem::path& folder) {
    const bench::AheadClock clock;
    platform::AppNames apps;
    platform::LinuxProcessTable table(clock, {.root = "/proc", .keptDescriptors = 4096, .apps = &apps});
    ProcessScanner scanner(table, clock);
    platform::LinuxMachine machine;
    SystemStatsSampler sampler(machine, clock);
    platform::LinuxServices::Options options;
    options.uid = geteuid();
    options.self = getpid();
    options.isToolHelper = [](std::string_view) { return false; };
    options.applications = &apps;
    platform::LinuxServices services(options);
    Publisher publisher(folder, clock);

    Parts parts;
    for (int round = 0; round < warmUp + rounds; ++round) {
        sleepers.wakeQuarter();
        Reading reading;
        reading.host = {HostKind::linux, geteuid(), getpid(), {1}, {}};
        reading.ramBytes = machine.installedBytes();
        Snapshot snapshot;
        const double scan = bench::seconds([&] { reading.processes = scanner.scan(); });
        const double sample = bench::seconds([&] { reading.stats = sampler.sample(); });
        reading.now = clock.now();
        const double managed = bench::seconds([&] {
            auto found = services.read(reading.processes, reading.now);
            reading.managed = std::move(found.managed);
            reading.host.adopters = std::move(found.adopters);
        });
        const double diagnose = bench::seconds([&] { snapshot = diagnosed(reading); });
        const double publish = bench::seconds([&] { publisher.publish(std::move(snapshot), reading.limits); });
        if (round < warmUp) continue;
        parts.scan.push_back(scan);
        parts.sample.push_back(sample);
        parts.services.push_back(managed);
        parts.diagnose.push_back(diagnose);
        parts.publish.push_back(publish);
    }
    return parts;
}

void tick(benchmark::State& state) {
    for (auto _ : state) {
        const auto folder = std::filesystem::temp_directory_path() / fmt::format("ravik-tick-{}", getpid());
        const bench::Sleepers sleepers(static_cast<int>(state.range(0)));
        const Parts parts = measure(sleepers, folder);
        std::filesystem::remove_all(folder);
        const double scan = bench::median(parts.scan);
        const double rest = bench::median(parts.diagnose) + bench::median(parts.publish);
        const auto ms = [](const std::vector<double>& figures) { return bench::median(figures) * 1e3; };
        fmt::print(
            "tick: about {} processes; scan {:.2f} ms, sample {:.2f} ms, services {:.2f} ms, classify and diagnose "
            "{:.2f} ms, publish and log {:.2f} ms of CPU time\n",
            state.range(0), ms(parts.scan), ms(parts.sample), ms(parts.services), ms(parts.diagnose),
            ms(parts.publish));
        state.counters["restOverScan"] = rest / scan;
        fmt::print("  classify, diagnose, publish, log / scan {:>9.3f}", rest / scan);
        if (state.range(0) >= judgedFrom) fmt::print("  <= 0.25 {}", rest <= 0.25 * scan ? "reached" : "MISSED");
        fmt::print("\n");
    }
}
BENCHMARK(tick)->Arg(100)->Arg(500)->Arg(2000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace ravik
