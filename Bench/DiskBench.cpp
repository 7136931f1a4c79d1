// Measuring a tree of 300,000 files beside du, and a whole disk scan beside gdu, over the same warm folders.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "Core/Disk/DiskScanner.h"

namespace ravik {

namespace {

namespace fs = std::filesystem;

constexpr int files = 300'000;
constexpr int rounds = 7;

/// A developer's home: projects whose node_modules hold packages of a few small folders each.
class Home {
public:
    Home() {
        std::string made = (fs::temp_directory_path() / "ravik-bench-XXXXXX").string();
        root = ::mkdtemp(made.data());
        std::mt19937 random{11};
        constexpr int projects = 40;
        constexpr int sizes[] = {100, 900, 5000, 20000};
        const std::string text(20000, 'x');
        for (int package = 0; fileCount < files; ++package) {
            const fs::path folder = project(package % projects) / "node_modules" / fmt::format("package-{}", package);
            for (const char* part : {"", "lib", "lib/internal", "dist"}) {
                fs::create_directories(folder / part);
                const int count = 3 + static_cast<int>(random() % 18);
                for (int file = 0; file < count; ++file, ++fileCount) {
                    std::ofstream out(folder / part / fmt::format("module-{}.js", file), std::ios::binary);
                    out.write(text.data(), sizes[random() % 4]);
                }
            }
        }
        for (int number = 0; number < projects; ++number) {
            const fs::path source = project(number) / "package.json";
            std::ofstream(source) << "{}";
            fs::last_write_time(source, fs::file_time_type::clock::now() - std::chrono::hours(24 * 40));
        }
    }
    ~Home() { fs::remove_all(root); }

    fs::path project(int number) const { return root / "Projects" / fmt::format("project-{}", number); }

    fs::path root;
    int fileCount = 0;
};

double seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

bool run(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

/// Peak resident size of `work` above what the process held before, in a child of its own.
double peakMB(const std::function<void()>& work) {
    int pipe[2];
    if (::pipe(pipe) != 0) return -1;
    const auto status = [](const std::string& key) {
        std::ifstream file("/proc/self/status");
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with(key)) return std::strtol(line.c_str() + key.size() + 1, nullptr, 10);
        }
        return 0L;
    };
    const pid_t child = ::fork();
    if (child == 0) {
        std::ofstream("/proc/self/clear_refs") << 5;
        const long before = status("VmRSS");
        work();
        const long kb = status("VmHWM") - before;
        ::_exit(::write(pipe[1], &kb, sizeof kb) == sizeof kb ? 0 : 1);
    }
    long kb = 0;
    const bool got = ::read(pipe[0], &kb, sizeof kb) == sizeof kb;
    ::close(pipe[0]);
    ::close(pipe[1]);
    ::waitpid(child, nullptr, 0);
    return got ? static_cast<double>(kb) / 1024 : -1;
}

std::size_t scanned(const Home& home) {
    const DiskScanner::Scope scope{
        .tables = diskTables(HostKind::linux),
        .home = home.root,
        .now = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count(),
        .isRunning = [](const auto&) { return false; },
    };
    return DiskScanner::scan(scope, {home.root / "Projects"}, {})->size();
}

void disk(benchmark::State& state) {
    const Home home;
    const fs::path tree = home.root / "Projects";
    const auto measure = [&] { benchmark::DoNotOptimize(DiskScanner::directorySize(tree)); };
    double ours = 1e9, du = 1e9, scan = 1e9, gdu = 1e9;
    std::size_t rows = 0;
    bool hasGdu = true;
    for ([[maybe_unused]] auto _ : state) {
        measure();
        for (int round = 0; round < rounds; ++round) {
            ours = std::min(ours, seconds(measure));
            du = std::min(du, seconds([&] { run("du -s '" + tree.string() + "'"); }));
            scan = std::min(scan, seconds([&] { rows = scanned(home); }));
            gdu = std::min(gdu, seconds([&] {
                               hasGdu = run("gdu --non-interactive --no-progress '" + tree.string() + "'") && hasGdu;
                           }));
        }
    }
    const double whole = peakMB(measure);
    const double part = peakMB([&] { DiskScanner::directorySize(home.project(0)); });
    fmt::print("disk: {} files; directorySize {:.0f} ms, du -s {:.0f} ms: ratio {:.2f}, target <= 0.7 {}\n",
               home.fileCount, ours * 1e3, du * 1e3, ours / du, ours / du <= 0.7 ? "met" : "MISSED");
    fmt::print("disk: whole scan {:.0f} ms, {} rows", scan * 1e3, rows);
    if (hasGdu) fmt::print("; gdu {:.0f} ms: ratio {:.2f}", gdu * 1e3, scan / gdu);
    fmt::print("\ndisk: memory above idle {:.2f} MB for all, {:.2f} MB for a fortieth\n", whole, part);
    state.counters["overDu"] = ours / du;
    state.counters["memoryMB"] = whole;
    if (hasGdu) state.counters["scanOverGdu"] = scan / gdu;
}
BENCHMARK(disk)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace ravik
