// One scan of the process table, beside a plain pass over /proc and beside other programs that read it, all in CPU
// time and in the same run.

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "Bench/Sleepers.h"
#include "Bench/TerminalPeer.h"
#include "Core/Watch/ProcessScanner.h"
#include "Platform/Linux/AppNames.h"
#include "Platform/Linux/Clock.h"
#include "Platform/Linux/LinuxProcessTable.h"

namespace ravik {

namespace {

namespace fs = std::filesystem;
using bench::AheadClock;
using bench::median;
using bench::seconds;
using bench::Sleepers;

constexpr int rounds = 7;
/// In how many scans every process is looked at closely once.
constexpr int turns = 12;
constexpr int judgedFrom = 2000;
constexpr int desktopEntries = 150;

/// As many desktop entries as a desktop has, and settings under which the peers refresh once a second.
class Scratch {
public:
    Scratch() {
        std::string made = (fs::temp_directory_path() / "ravik-scan-XXXXXX").string();
        root = ::mkdtemp(made.data());
        fs::create_directories(root / "applications");
        for (int at = 0; at < desktopEntries; ++at) {
            std::ofstream(root / "applications" / fmt::format("org.example.App{}.desktop", at))
                << "[Desktop Entry]\nType=Application\nName=App " << at << "\nName[de]=Programm " << at
                << "\nComment=Does what it does\nExec=app" << at << " %U\nIcon=app\nCategories=Utility;\n";
        }
        fs::create_directories(root / "config/btop");
        // The clock would draw between the refreshes.
        std::ofstream(root / "config/btop/btop.conf") << "update_ms = 1000\nclock_format = \"\"\n";
    }
    ~Scratch() { fs::remove_all(root); }

    platform::AppNames::Folders folders() const {
        auto folders = platform::AppNames::Folders::fromEnvironment();
        folders.applications.push_back(root / "applications");
        return folders;
    }
    fs::path root;
};

/// Lists /proc and opens, reads and closes every `stat`, nothing else.
int plainPass() {
    DIR* folder = opendir("/proc");
    char path[64];
    char text[4096];
    int count = 0;
    while (const dirent* entry = readdir(folder)) {
        if (entry->d_name[0] < '0' || entry->d_name[0] > '9') continue;
        *fmt::format_to_n(path, sizeof path - 1, "{}/stat", entry->d_name).out = '\0';
        const int file = openat(dirfd(folder), path, O_RDONLY | O_CLOEXEC);
        if (file < 0) continue;
        if (read(file, text, sizeof text) > 0) ++count;
        close(file);
    }
    closedir(folder);
    return count;
}

struct Figures {
    int processes = 0;
    double plain = 0;
    /// With every fourth process awake since the scan before, and with every one.
    double steady = 0;
    double awake = 0;
    double first = 0;
};

Figures measure(const Scratch& scratch, const Sleepers& sleepers) {
    const AheadClock clock;
    platform::AppNames apps(scratch.folders());
    platform::LinuxProcessTable table(clock, {.root = "/proc", .keptDescriptors = 4096, .apps = &apps});
    ProcessScanner scanner(table, clock);
    for (int scan = 0; scan <= turns; ++scan) scanner.scan();

    Figures figures;
    std::vector<double> plain;
    std::vector<double> steady;
    std::vector<double> awake;
    std::vector<double> first;
    plainPass();
    for (int round = 0; round < rounds; ++round) {
        double passes = 0;
        double quarters = 0;
        double wholes = 0;
        const auto scanOnce = [&] { return seconds([&] { benchmark::DoNotOptimize(scanner.scan()); }); };
        // Side by side, so that a busy moment meets all.
        for (int turn = 0; turn < turns; ++turn) {
            passes += seconds([&] { figures.processes = plainPass(); });
            sleepers.wakeQuarter();
            quarters += scanOnce();
        }
        for (int turn = 0; turn < turns; ++turn) {
            sleepers.wakeAll();
            wholes += scanOnce();
        }
        plain.push_back(passes / turns);
        steady.push_back(quarters / turns);
        awake.push_back(wholes / turns);
        first.push_back(seconds([&] {
            platform::AppNames newApps(scratch.folders());
            platform::LinuxProcessTable newTable(clock, {.root = "/proc", .keptDescriptors = 4096, .apps = &newApps});
            ProcessScanner newScanner(newTable, clock);
            benchmark::DoNotOptimize(newScanner.scan());
        }));
    }
    figures.plain = median(plain);
    figures.steady = median(steady);
    figures.awake = median(awake);
    figures.first = median(first);
    return figures;
}

double medianOf(int runs, const std::function<std::optional<double>()>& run) {
    std::vector<double> figures;
    for (int at = 0; at < runs; ++at) {
        if (const auto figure = run()) figures.push_back(*figure);
    }
    return median(figures);
}

void row(benchmark::State& state, const char* counter, const std::string& what, double figure, double target) {
    state.counters[counter] = figure;
    // A few processes do not outweigh what a scan costs at any size.
    const bool isJudged = state.range(0) >= judgedFrom;
    fmt::print("  {:<42} {:>7.3f}", what, figure);
    if (isJudged) fmt::print("  <= {:<6.3f} {}", target, figure <= target ? "reached" : "MISSED");
    fmt::print("\n");
}

void peerRow(benchmark::State& state, const char* counter, const std::string& peer, double steady, double other,
             double plain, double target) {
    if (other <= 0) {
        fmt::print("  steady scan / {:<28} not measured: it does not run here\n", peer);
        return;
    }
    row(state, counter, fmt::format("steady scan / {} ({:.1f} F)", peer, other / plain), steady / other, target);
}

void scan(benchmark::State& state) {
    for (auto _ : state) {
        const Scratch scratch;
        const Sleepers sleepers(static_cast<int>(state.range(0)));
        const Figures figures = measure(scratch, sleepers);
        setenv("XDG_CONFIG_HOME", (scratch.root / "config").c_str(), 1);
        const double ps = medianOf(rounds, [] {
            return bench::secondsOfRun({"ps", "-eo", "pid,ppid,euid,lstart,rss,time,comm,args"});
        });
        const double htop = medianOf(3, [] { return bench::secondsPerRefresh({"htop", "-d", "10"}, 5); });
        const double btop = medianOf(3, [] { return bench::secondsPerRefresh({"btop", "--utf-force"}, 5); });

        fmt::print("scan: {} processes; F {:.2f} ms, steady {:.2f} ms, first {:.2f} ms of CPU time\n",
                   figures.processes, figures.plain * 1e3, figures.steady * 1e3, figures.first * 1e3);
        row(state, "steadyOverF", "steady scan, a quarter awake / F", figures.steady / figures.plain, 0.65);
        row(state, "awakeOverF", "steady scan, all awake / F", figures.awake / figures.plain, 0.65);
        row(state, "firstOverF", "first scan with application names / F", figures.first / figures.plain, 5);
        peerRow(state, "overPs", "ps", figures.steady, ps, figures.plain, 0.1);
        peerRow(state, "overHtop", "htop", figures.steady, htop, figures.plain, 1.0 / 12);
        peerRow(state, "overBtop", "btop", figures.steady, btop, figures.plain, 0.45);
    }
}
BENCHMARK(scan)->Arg(100)->Arg(500)->Arg(2000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace ravik
