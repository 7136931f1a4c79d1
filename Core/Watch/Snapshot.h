#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Core/Base/Time.h"
#include "Core/Diagnosis/AppGroup.h"
#include "Core/Diagnosis/Finding.h"
#include "Core/Watch/Proc.h"
#include "Core/Watch/SystemStats.h"

namespace ravik {

/// One self-consistent picture of the machine: every field comes from one scan and one sample.
struct Snapshot {
    SystemStats stats;
    std::vector<std::string> breaches;
    std::vector<AppGroup> groups;
    std::vector<Proc> orphans;
    std::vector<Proc> hogs;
    std::vector<AgentSession> sessions;
    /// In scan order.
    std::vector<Proc> processes;
    std::vector<Finding> findings;
    Time takenAt = 0;
    /// False only before the first reading.
    bool sampled = false;

    /// The findings that one free-everything action may touch: killTrees without a caution, in order.
    std::vector<const Finding*> freeable() const;
    std::uint64_t freeableBytes() const;
    /// Summed gain of all findings.
    std::uint64_t reclaimableBytes() const;

    friend bool operator==(const Snapshot&, const Snapshot&) = default;
};

}  // namespace ravik
