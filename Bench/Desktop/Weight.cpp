#include "Bench/Desktop/Weight.h"

#include <chrono>
#include <fstream>
#include <string>
#include <thread>

#include <fmt/format.h>

#include "Platform/Linux/ProcFolder.h"

namespace ravik::bench {

namespace {

std::optional<double> rollup(Pid pid, const char* key) {
    std::ifstream file(fmt::format("/proc/{}/smaps_rollup", pid));
    for (std::string word; file >> word;) {
        double kilobytes = 0;
        if (word == key && file >> kilobytes) return kilobytes / 1024;
    }
    return {};
}

}  // namespace

std::optional<double> proportionalMegabytes(Pid pid) { return rollup(pid, "Pss:"); }

std::optional<double> anonymousMegabytes(Pid pid) { return rollup(pid, "Anonymous:"); }

std::optional<double> cpuPercent(Pid pid, double seconds) {
    const auto before = platform::cpuNanoseconds(pid);
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    const auto after = platform::cpuNanoseconds(pid);
    if (!before || !after) return {};
    return static_cast<double>(*after - *before) * 1e-9 / seconds * 100;
}

}  // namespace ravik::bench
