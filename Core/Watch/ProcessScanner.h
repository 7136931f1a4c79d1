#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "Core/Watch/Proc.h"
#include "Platform/Platform.h"

namespace ravik {

/// Reads the whole process table, once a tick. The only source of figures about single processes. A scan raises
/// nothing: what vanishes while it is read is left out.
///
/// One scan at a time, from any thread. Table and clock outlive the scanner.
class ProcessScanner {
public:
    ProcessScanner(ProcessTable& table, const Clock& clock) : m_table(table), m_clock(clock) {}

    /// Every process that can be read, in the order in which the kernel lists them. `cpuPercent` spans the time
    /// since the previous scan.
    std::vector<Proc> scan();

    /// Pids of which a CPU figure is kept for the next scan.
    std::size_t remembered() const { return m_lastCPU.size(); }

private:
    struct Used {
        std::uint64_t ticks = 0;
        Time at = 0;
    };

    double cpuPercent(Pid pid, std::uint64_t ticks, Time now);
    void prune(const std::vector<Proc>& procs);

    ProcessTable& m_table;
    const Clock& m_clock;
    std::unordered_map<Pid, Used> m_lastCPU;
    // Kept for their memory only.
    Pids m_pids;
    ProcessReading m_reading;
};

}  // namespace ravik
