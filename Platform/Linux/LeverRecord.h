#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Base/Pids.h"
#include "Core/Base/Time.h"

namespace ravik::platform {

/// One thread as it was before it was lowered.
struct LoweredThread {
    Pid tid = 0;
    std::uint64_t startTicks = 0;
    /// As sched_getscheduler tells it, flags included.
    int policy = 0;
    /// As ioprio_get tells it.
    int ioPriority = 0;
    friend bool operator==(const LoweredThread&, const LoweredThread&) = default;
};

/// One process that was acted on.
struct HeldProcess {
    Pid pid = 0;
    std::uint64_t startTicks = 0;
    /// Empty for a pause. The first is the main thread.
    std::vector<LoweredThread> threads;
    friend bool operator==(const HeldProcess&, const HeldProcess&) = default;
};

/// A unit of the user's service manager whose weight was lowered.
struct LoweredUnit {
    std::string name;
    /// Its control group below the mount, as "/user.slice/…".
    std::string path;
    /// That folder's inode, which tells it from a later one of the same name.
    std::uint64_t inode = 0;
    /// What the manager had for CPUWeight; its largest number stands for none.
    std::uint64_t weight = 0;
    friend bool operator==(const LoweredUnit&, const LoweredUnit&) = default;
};

/// A session's autogroup whose nice value was raised. The kernel never uses a name twice.
struct LoweredAutogroup {
    std::string name;
    int nice = 0;
    friend bool operator==(const LoweredAutogroup&, const LoweredAutogroup&) = default;
};

/// One lever in force, with what is needed to undo it.
struct LeverRecord {
    /// Unique within one file.
    std::uint64_t id = 0;
    std::string action;  // "pause" or "demote"
    std::string target;
    Time at = 0;
    /// `at` in the kernel's clock ticks since its start: what is younger inherited its priority.
    std::uint64_t ticks = 0;
    std::vector<HeldProcess> processes;
    /// How the CPU share was lowered: by units, by autogroups, or by each thread's policy.
    std::vector<LoweredUnit> units;
    std::vector<LoweredAutogroup> autogroups;
    bool idlePolicy = false;

    Pids pids() const {
        Pids found;
        for (const HeldProcess& process : processes) found.push_back(process.pid);
        return found;
    }
    friend bool operator==(const LeverRecord&, const LeverRecord&) = default;
};

/// The records of one run of the kernel, as they stand in the file.
struct LeverPage {
    std::string boot;
    std::vector<LeverRecord> records;
    friend bool operator==(const LeverPage&, const LeverPage&) = default;
};

/// Pure. A record that is not whole is passed over; absent if the text is no page at all.
std::string writePage(const LeverPage& page);
std::optional<LeverPage> parsePage(std::string_view text);

}  // namespace ravik::platform
