#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Core/Watch/Proc.h"

namespace ravik {

/// The processes under one group name. An id that begins with "[" is another user's group.
struct AppGroup {
    std::string id;
    std::uint64_t footprintBytes = 0;
    double cpuPercent = 0;
    /// In the order of the process list.
    std::vector<Proc> processes;

    friend bool operator==(const AppGroup&, const AppGroup&) = default;
};

/// An AI coding tool with everything below it, or the record of what ended sessions left.
struct AgentSession {
    /// Pid of the tool; -1 for the record of ended sessions.
    Pid id = -1;
    std::string tool;
    bool alive = false;
    /// Root first, parents before children.
    std::vector<Proc> members;

    std::uint64_t footprintBytes() const;

    friend bool operator==(const AgentSession&, const AgentSession&) = default;
};

}  // namespace ravik
