#pragma once

#include <cstdint>
#include <unordered_set>
#include <vector>

namespace ravik {

/// A process id as the kernel hands it out. Never an identity by itself: see Proc::started.
using Pid = std::int32_t;
using Pids = std::vector<Pid>;
using PidSet = std::unordered_set<Pid>;

}  // namespace ravik
