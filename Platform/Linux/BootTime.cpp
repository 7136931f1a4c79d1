#include "Platform/Linux/BootTime.h"

#include <charconv>

#include <unistd.h>

#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace {

template <typename Number>
std::optional<Number> numberAt(std::string_view text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{}) return {};
    return value;
}

// Behind the ")" comes the state, field 3; the start stamp is field 22.
constexpr int fieldsFromStateToStart = 19;

}  // namespace

std::optional<std::int64_t> parseBootTime(std::string_view procStat) {
    constexpr std::string_view key = "btime ";
    for (std::size_t at = 0; at < procStat.size();) {
        const std::string_view line = procStat.substr(at, procStat.find('\n', at) - at);
        if (line.starts_with(key)) return numberAt<std::int64_t>(line.substr(key.size()));
        at += line.size() + 1;
    }
    return {};
}

std::int64_t bootTime() {
    static const std::int64_t boot = parseBootTime(readFile("/proc/stat").value_or("")).value_or(0);
    return boot;
}

std::int64_t ticksPerSecond() {
    static const std::int64_t rate = [] {
        const long told = sysconf(_SC_CLK_TCK);
        return told > 0 ? told : 100;
    }();
    return rate;
}

Time startedAt(std::uint64_t startTicks, std::int64_t boot, std::int64_t rate) {
    return static_cast<Time>(boot + static_cast<std::int64_t>(startTicks / static_cast<std::uint64_t>(rate)));
}

Time startedAt(std::uint64_t startTicks) { return startedAt(startTicks, bootTime(), ticksPerSecond()); }

std::optional<StartStamp> parseStartStamp(std::string_view pidStat) {
    // A program may put any byte into its name, ")" and blanks among them.
    const std::size_t nameEnd = pidStat.rfind(") ");
    if (nameEnd == std::string_view::npos || nameEnd + 2 >= pidStat.size()) return {};
    std::string_view rest = pidStat.substr(nameEnd + 2);
    const char state = rest.front();
    for (int field = 0; field < fieldsFromStateToStart; ++field) {
        const std::size_t blank = rest.find(' ');
        if (blank == std::string_view::npos) return {};
        rest.remove_prefix(blank + 1);
    }
    const auto ticks = numberAt<std::uint64_t>(rest);
    if (!ticks) return {};
    return StartStamp{state, *ticks};
}

}  // namespace ravik::platform
