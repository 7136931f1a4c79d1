#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the kernel's files about the machine mean. Pure.
namespace ravik::platform {

/// The kilobytes of a line of meminfo ("MemAvailable:  123 kB"), as bytes.
std::optional<std::uint64_t> meminfoBytes(std::string_view meminfo, std::string_view key);

/// A counter of vmstat ("pswpout 123").
std::optional<std::uint64_t> vmstatCounter(std::string_view vmstat, std::string_view key);

/// What the store of a zram device itself takes up in memory: the third figure of mm_stat.
std::optional<std::uint64_t> zramStoreBytes(std::string_view mmStat);

/// The names of the zram devices that /proc/swaps lists ("zram0").
std::vector<std::string> zramSwaps(std::string_view swaps);

/// What a control group's memory.stat counts as its own and its children's, and the kernel can take back without paging:
/// file pages and, where they are told, reclaimable slabs.
std::uint64_t reclaimableBytes(std::string_view memoryStat);

/// A memory limit of a control group; absent for "max", for the number that stands for it in a hierarchy of the first
/// version, and for what is no number.
std::optional<std::uint64_t> memoryLimit(std::string_view text);

/// Where the memory of a process is limited.
struct MemoryGroups {
    /// False for a hierarchy of the first version, which memory has for itself.
    bool isUnified = false;
    /// From the process's own group up to the root, longest first: "/a/b", "/a", "".
    std::vector<std::string> folders;

    friend bool operator==(const MemoryGroups&, const MemoryGroups&) = default;
};
/// Reads the text of /proc/PID/cgroup; absent where it names neither kind.
std::optional<MemoryGroups> memoryGroups(std::string_view cgroup);

/// A whole number at the front of a file.
std::optional<std::uint64_t> wholeNumber(std::string_view text);

}  // namespace ravik::platform
