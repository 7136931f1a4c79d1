#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Base/Pids.h"
#include "Platform/Linux/Descriptor.h"

namespace ravik::platform {

/// Memory for what is read, used again and again. Views into it end with the next reading.
class ReadBuffer {
public:
    ReadBuffer() : m_bytes(8192) {}
    char* data() { return m_bytes.data(); }
    std::size_t size() const { return m_bytes.size(); }
    void grow() { m_bytes.resize(m_bytes.size() * 4); }

private:
    std::vector<char> m_bytes;
};

/// The folder in which the kernel shows its processes, or a captured copy of one. Any thread, each with a buffer of
/// its own.
class ProcFolder {
public:
    explicit ProcFolder(const std::string& root);

    /// False for a captured copy, whose pids are no processes of this machine.
    bool isLive() const { return m_isLive; }

    /// All pids in the kernel's order; empty if they cannot be listed.
    void list(Pids& pids, ReadBuffer& buffer) const;

    /// Opens /proc/PID/FILE; none if it has gone, or out of descriptors.
    Descriptor open(Pid pid, const char* file) const;
    /// Opens /proc/FILE.
    Descriptor open(const char* file) const;
    /// All of an open file, from its beginning. Absent if it cannot be read: its process has gone, or the kernel
    /// refuses.
    static std::optional<std::string_view> read(const Descriptor& file, ReadBuffer& buffer);
    std::optional<std::string_view> read(Pid pid, const char* file, ReadBuffer& buffer) const;

    /// The effective user. Of the process's folder, never of a file in it: those change hands to root when a process
    /// may not be traced.
    std::optional<std::uint32_t> owner(Pid pid) const;
    /// Where /proc/PID/exe points; absent for another user's process.
    std::optional<std::string> executable(Pid pid) const;

private:
    Descriptor m_folder;
    bool m_isLive = false;
};

/// Nanoseconds of CPU that all threads of a process have used, of any user's. Absent if there is no such process.
/// Whether it is the process meant must be proven by a reading that comes after.
std::optional<std::uint64_t> cpuNanoseconds(Pid pid);

/// False only if the kernel says that there is no such process, which a missing entry in /proc does not prove.
bool exists(Pid pid);

}  // namespace ravik::platform
