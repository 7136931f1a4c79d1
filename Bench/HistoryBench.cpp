// The history of two weeks, read cold and warm, beside grep and jq over the same bytes.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "Core/Base/Iso8601.h"
#include "Core/Record/HistoryStore.h"

namespace ravik {

namespace {

namespace fs = std::filesystem;

constexpr int days = 14;
constexpr std::size_t dayBytes = 10'000'000;
constexpr int rounds = 5;

/// A log as a busy developer's machine leaves it, keys in the order in which the log's writer puts them.
class Logs {
public:
    Logs() {
        std::string made = (fs::temp_directory_path() / "ravik-bench-XXXXXX").string();
        root = ::mkdtemp(made.data());
        fs::create_directories(root / "logs");
        for (int day = 0; day < days; ++day) write(day);
    }
    ~Logs() { fs::remove_all(root); }

    fs::path root;
    std::uintmax_t bytes = 0;

private:
    std::mt19937 m_random{7};
    double between(double from, double to) { return std::uniform_real_distribution<double>(from, to)(m_random); }

    void write(int day) {
        const Time midnight = 1772323200 + 86400.0 * day;
        const fs::path file = root / "logs" / (Iso8601::format(midnight).substr(0, 10) + ".jsonl");
        std::string out;
        for (int n = 0; out.size() < dayBytes; ++n) out += tickLines(Iso8601::format(midnight + 4.3 * n), n);
        std::ofstream(file, std::ios::binary) << out;
        bytes += out.size();
    }

    std::string tickLines(const std::string& t, int n) {
        const char* const apps[] = {
            "Google Chrome", "Visual Studio Code", "Claude Code", "node: server.js", "Slack", "Docker", "Spotify"};
        std::string top;
        for (int rank = 0; rank < 5; ++rank) {
            const int app = (rank + (n % 40 == 0)) % 7;
            top += fmt::format("{}[\"{}\",{}]", rank ? "," : "", apps[app], static_cast<int>(between(200, 5000)));
        }
        std::string lines = fmt::format(
            R"({{"breaches":[],"diskFreeGB":{},"gpu":{},"hogs":0,"kind":"tick","load":{},"memFreePct":{},"orphans":2,)"
            R"("procs":{},"session":"0A1B2C3D","sessions":1,"swapGB":{},"swapOutMBps":{},"t":"{}","top":[{}]}})"
            "\n",
            between(80, 90), n % 100, std::round(between(0, 9) * 100) / 100, n % 60 + 10, n % 30 + 500, between(0, 12),
            between(0, 1), t, top);
        lines += fmt::format(
            R"({{"findings":["leftovers","orphan:{}","holder:Google Chrome"],"kind":"diagnosis","reclaimableMB":{},)"
            R"("session":"0A1B2C3D","t":"{}"}})"
            "\n",
            n / 4000, n % 3000, t);
        lines += fmt::format(R"({{"cpu":{},"kind":"self","mb":41,"session":"0A1B2C3D","t":"{}"}})"
                             "\n",
                             between(0, 2), t);
        return lines;
    }
};

double seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Its output is read, so that the program cannot stop at the first match.
void run(const std::string& command) {
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    if (!pipe) std::abort();
    char buffer[65536];
    while (std::fread(buffer, 1, sizeof buffer, pipe) > 0) continue;
    if (::pclose(pipe) != 0) std::abort();
}

std::size_t statusKB(const char* key) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(key)) return std::strtoull(line.c_str() + std::string(key).size() + 1, nullptr, 10);
    }
    return 0;
}

/// Peak resident size of `work` above what the process held before, in a child of its own.
double peakMB(const std::function<void()>& work) {
    int pipe[2];
    if (::pipe(pipe) != 0) return 0;
    const pid_t child = ::fork();
    if (child == 0) {
        std::ofstream("/proc/self/clear_refs") << 5;
        const std::size_t before = statusKB("VmRSS");
        work();
        const std::size_t kb = statusKB("VmHWM") - before;
        ::_exit(::write(pipe[1], &kb, sizeof kb) == sizeof kb ? 0 : 1);
    }
    std::size_t kb = 0;
    const bool got = ::read(pipe[0], &kb, sizeof kb) == sizeof kb;
    ::close(pipe[0]);
    ::close(pipe[1]);
    ::waitpid(child, nullptr, 0);
    return got ? static_cast<double>(kb) / 1024 : -1;
}

void row(const char* what, double figure, const char* unit, const char* sign, double target, bool met) {
    fmt::print("{:<34} {:>9.2f} {:<4} target {} {:<6g} {}\n", what, figure, unit, sign, target, met ? "met" : "MISSED");
}

void history(benchmark::State& state) {
    const Logs logs;
    const fs::path folder = logs.root / "logs";
    const fs::path cache = logs.root / "cache";
    const auto load = [&] { benchmark::DoNotOptimize(HistoryStore::load(folder, cache)); };
    const std::string first = (folder / "2026-03-01.jsonl").string();
    double cold = 1e9, warm = 1e9, memo = 1e9, grep = 1e9, jq = 1e9;
    for ([[maybe_unused]] auto _ : state) {
        for (int round = 0; round < rounds; ++round) {
            grep =
                std::min(grep, seconds([&] { run("LC_ALL=C grep -c '\"kind\":\"tick\"' " + folder.string() + "/*"); }));
            fs::remove_all(cache);
            cold = std::min(cold, seconds(load));
            warm = std::min(warm, seconds(load));
        }
        jq = seconds(
            [&] { run("jq -c 'select(.kind == \"tick\") | [.t, .swapGB, .memFreePct, .load, .top]' " + first); });
        HistoryMemo known;
        for (auto& day : HistoryStore::load(folder, cache)) known.emplace(day.day, day);
        memo = seconds([&] { benchmark::DoNotOptimize(HistoryStore::load(folder, cache, std::move(known))); });
    }
    fs::remove_all(cache);
    const double memory = peakMB(load);
    const double bytes = static_cast<double>(logs.bytes);
    const double jqPerByte = jq / static_cast<double>(fs::file_size(first));
    fmt::print("history: {} days, {:.0f} MB; grep {:.0f} ms, cold {:.0f} ms, warm {:.2f} ms, by memo {:.2f} ms\n", days,
               bytes / 1e6, grep * 1e3, cold * 1e3, warm * 1e3, memo * 1e3);
    row("cold, speed over grep -c", grep / cold, "x", ">=", 0.5, grep / cold >= 0.5);
    row("cold, speed over jq", jqPerByte * bytes / cold, "x", ">=", 20, jqPerByte * bytes / cold >= 20);
    row("warm, nothing new", warm * 1e3, "ms", "<", 5, warm < 0.005);
    row("cold, memory above idle", memory, "MB", "<=", 16, memory <= 16);
    state.counters["overGrep"] = grep / cold;
    state.counters["overJq"] = jqPerByte * bytes / cold;
    state.counters["warmMs"] = warm * 1e3;
    state.counters["coldMB"] = memory;
}
BENCHMARK(history)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace ravik
