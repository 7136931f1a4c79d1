#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Core/Diagnosis/Diagnoser.h"
#include "Core/Host/Host.h"
#include "Core/Watch/Snapshot.h"

/// Small machines, described by what matters in a test.
namespace ravik::fakes {

inline constexpr std::uint64_t MiB = 1ull << 20;
inline constexpr std::uint64_t GiB = 1ull << 30;
inline constexpr double minute = 60;
inline constexpr double hour = 3600;
inline constexpr Time now = 1'700'000'000;

Host macHost();    // uid 501
Host linuxHost();  // uid 1000

/// A process record in the making. Unless said otherwise: parent 50 (which does not exist), the user of macHost(),
/// named after its program, two hours old, no memory, no CPU.
class Making {
public:
    Making(Pid id, std::string_view command);

    Making& parent(Pid pid) { return m_proc.ppid = pid, *this; }
    Making& uid(std::uint32_t uid) { return m_proc.uid = uid, *this; }
    Making& name(std::string name) { return m_proc.name = std::move(name), *this; }
    Making& age(double seconds) { return m_proc.started = now - seconds, *this; }
    Making& mb(std::uint64_t mebibytes) { return m_proc.footprintBytes = mebibytes * MiB, *this; }
    Making& bytes(std::uint64_t bytes) { return m_proc.footprintBytes = bytes, *this; }
    Making& cpu(double percent) { return m_proc.cpuPercent = percent, *this; }
    Making& app(std::string_view app) { return m_proc.app = Text(app), *this; }
    operator Proc() const { return m_proc; }

private:
    Proc m_proc;
};

/// A calm computer with 16 GiB and no processes.
struct Machine {
    Host host = macHost();
    Thresholds limits;
    std::uint64_t ram = 16 * GiB;
    SystemStats stats = calm();
    std::vector<Proc> procs;
    PidSet managed;
    KeepSet keep;
    Trend trend;

    static SystemStats calm();
    /// Free memory just below the line under which memory counts as short.
    void press() { stats.memoryFreePercent = limits.memoryFreePct + 4; }

    /// What one tick makes of it, without the findings.
    Snapshot snapshot() const;
    std::vector<Finding> diagnose() const;
    /// The finding with this id; absent if there is none.
    std::optional<Finding> finding(std::string_view id) const;
    /// Ids of all findings, in order.
    std::vector<std::string> ids() const;
};

Pids pids(const std::vector<Proc>& procs);

}  // namespace ravik::fakes
