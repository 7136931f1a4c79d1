#include "Platform/Linux/MachineParse.h"

#include <algorithm>
#include <charconv>

namespace ravik::platform {

namespace {

std::string_view skipBlanks(std::string_view text) {
    const std::size_t at = text.find_first_not_of(" \t");
    return at == text.npos ? std::string_view{} : text.substr(at);
}

/// What stands behind `key` on the line that begins with it.
std::optional<std::string_view> lineBehind(std::string_view text, std::string_view key) {
    while (!text.empty()) {
        const std::size_t feed = text.find('\n');
        const std::string_view line = text.substr(0, feed);
        if (line.starts_with(key)) {
            const std::string_view rest = line.substr(key.size());
            if (!rest.empty() && (rest.front() == ' ' || rest.front() == ':' || rest.front() == '\t')) {
                return skipBlanks(rest.front() == ':' ? rest.substr(1) : rest);
            }
        }
        if (feed == text.npos) break;
        text.remove_prefix(feed + 1);
    }
    return {};
}

}  // namespace

std::optional<std::uint64_t> wholeNumber(std::string_view text) {
    text = skipBlanks(text);
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end == text.data()) return {};
    return value;
}

std::optional<std::uint64_t> meminfoBytes(std::string_view meminfo, std::string_view key) {
    const auto rest = lineBehind(meminfo, key);
    const auto kilobytes = rest ? wholeNumber(*rest) : std::nullopt;
    if (!kilobytes) return {};
    return *kilobytes * 1024;
}

std::optional<std::uint64_t> vmstatCounter(std::string_view vmstat, std::string_view key) {
    const auto rest = lineBehind(vmstat, key);
    return rest ? wholeNumber(*rest) : std::nullopt;
}

std::optional<std::uint64_t> zramStoreBytes(std::string_view mmStat) {
    for (int skipped = 0; skipped < 2; ++skipped) {
        mmStat = skipBlanks(mmStat);
        const std::size_t blank = mmStat.find_first_of(" \t");
        if (blank == mmStat.npos) return {};
        mmStat.remove_prefix(blank);
    }
    return wholeNumber(mmStat);
}

std::vector<std::string> zramSwaps(std::string_view swaps) {
    constexpr std::string_view prefix = "/dev/";
    std::vector<std::string> devices;
    while (!swaps.empty()) {
        const std::string_view line = swaps.substr(0, swaps.find('\n'));
        swaps.remove_prefix(std::min(line.size() + 1, swaps.size()));
        const std::string_view path = line.substr(0, line.find_first_of(" \t"));
        if (!path.starts_with(prefix)) continue;
        const std::string_view device = path.substr(prefix.size());
        if (device.starts_with("zram") && device.find('/') == device.npos) devices.emplace_back(device);
    }
    return devices;
}

std::uint64_t reclaimableBytes(std::string_view memoryStat) {
    std::uint64_t bytes = 0;
    for (const std::string key : {"inactive_file", "active_file", "slab_reclaimable"}) {
        // In the first version a plain key leaves the groups below out.
        const auto whole = vmstatCounter(memoryStat, "total_" + key);
        bytes += whole ? *whole : vmstatCounter(memoryStat, key).value_or(0);
    }
    return bytes;
}

std::optional<std::uint64_t> memoryLimit(std::string_view text) {
    // The first version writes the largest number of whole pages, which differs with their size.
    constexpr std::uint64_t unlimited = 1ull << 62;
    const auto bytes = wholeNumber(text);
    return bytes && *bytes < unlimited ? bytes : std::nullopt;
}

std::optional<MemoryGroups> memoryGroups(std::string_view cgroup) {
    std::optional<std::string> unified;
    std::optional<std::string> legacy;
    while (!cgroup.empty()) {
        const std::string_view line = cgroup.substr(0, cgroup.find('\n'));
        cgroup.remove_prefix(std::min(line.size() + 1, cgroup.size()));
        const std::size_t first = line.find(':');
        const std::size_t second = first == line.npos ? line.npos : line.find(':', first + 1);
        if (second == line.npos || !line.substr(second + 1).starts_with('/')) continue;
        const std::string path(line.substr(second + 1));
        const std::string controllers = "," + std::string(line.substr(first + 1, second - first - 1)) + ",";
        if (line.starts_with("0::")) {
            unified = path;
        } else if (controllers.find(",memory,") != controllers.npos) {
            legacy = path;
        }
    }
    if (!unified && !legacy) return {};

    // Where both are there, memory is the older one's.
    MemoryGroups groups{!legacy, {}};
    for (std::string path = legacy ? *legacy : *unified; path.size() > 1; path.erase(path.rfind('/'))) {
        groups.folders.push_back(path);
    }
    groups.folders.emplace_back();
    return groups;
}

}  // namespace ravik::platform
