// One scan of the process table, beside a plain pass over /proc and beside other programs that read it, all in CPU
// time and in the same run.

#include <algorithm>
#include <array>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "Bench/TerminalPeer.h"
#include "Core/Watch/ProcessScanner.h"
#include "Platform/Linux/AppNames.h"
#include "Platform/Linux/Clock.h"
#include "Platform/Linux/LinuxProcessTable.h"

namespace ravik {

namespace {

namespace fs = std::filesystem;

constexpr int rounds = 7;
/// In how many scans every process is looked at closely once.
constexpr int turns = 12;
constexpr int judgedFrom = 2000;
constexpr int familySize = 10;
constexpr int desktopEntries = 150;

/// An hour ahead, so that processes which have just been started count as old.
class AheadClock : public platform::SystemClock {
public:
    Time now() const override { return SystemClock::now() + 3600; }
};

/// Processes that sleep until they are woken, in families of ten, ended with their owner.
class Sleepers {
public:
    explicit Sleepers(int count) : m_light(count / 4), m_sound(count - count / 4) {
        if (pipe2(m_lightBell.data(), O_CLOEXEC) != 0 || pipe2(m_soundBell.data(), O_CLOEXEC) != 0) return;
        prctl(PR_SET_CHILD_SUBREAPER, 1);
        for (int started = 0; started < count; started += familySize) {
            const pid_t head = fork();
            if (head > 0) m_heads.push_back(head);
            if (head != 0) continue;
            endWithParent();
            const int end = std::min(started + familySize, count);
            for (int member = started + 1; member < end; ++member) {
                if (fork() != 0) continue;
                endWithParent();
                sleepForEver(member);
            }
            sleepForEver(started);
        }
        usleep(300'000);
    }
    ~Sleepers() {
        for (const pid_t head : m_heads) kill(head, SIGKILL);
        // The heads, then the members that have come down to us.
        while (waitpid(-1, nullptr, 0) > 0) {
        }
        for (const int end : m_lightBell) close(end);
        for (const int end : m_soundBell) close(end);
    }
    Sleepers(const Sleepers&) = delete;
    Sleepers& operator=(const Sleepers&) = delete;

    /// Lets a quarter of them run for a moment, always the same.
    void wakeQuarter() const { ring(m_lightBell[1], m_light); }
    void wakeAll() const {
        ring(m_soundBell[1], m_sound);
        wakeQuarter();
    }

private:
    static void endWithParent() { prctl(PR_SET_PDEATHSIG, SIGKILL); }
    [[noreturn]] void sleepForEver(int member) const {
        const int bell = member < m_light ? m_lightBell[0] : m_soundBell[0];
        char heard = 0;
        for (;;) {
            // The nap leaves the next ring to another.
            if (read(bell, &heard, 1) == 1) usleep(30'000);
            else pause();
        }
    }
    static void ring(int bell, int count) {
        const std::string rings(static_cast<std::size_t>(count), '!');
        if (write(bell, rings.data(), rings.size()) == count) usleep(100'000);
    }

    int m_light;
    int m_sound;
    std::array<int, 2> m_lightBell{-1, -1};
    std::array<int, 2> m_soundBell{-1, -1};
    std::vector<pid_t> m_heads;
};

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

double seconds(const std::function<void()>& work) {
    const auto now = [] {
        timespec used{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
        return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
    };
    const double begin = now();
    work();
    return now() - begin;
}

double median(std::vector<double> figures) {
    std::ranges::sort(figures);
    return figures.empty() ? 0 : figures[figures.size() / 2];
}

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

        fmt::print("scan: {} processes; F {:.2f} ms, steady {:.2f} ms, first {:.2f} ms of CPU time\n", figures.processes,
                   figures.plain * 1e3, figures.steady * 1e3, figures.first * 1e3);
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
