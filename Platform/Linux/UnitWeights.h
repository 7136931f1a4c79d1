#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Core/Base/Pids.h"
#include "Platform/Linux/LeverRecord.h"
#include "Platform/Linux/UserManager.h"

/// The CPU weight of an application's own units under the user's service manager. Main loop.
namespace ravik::platform {

/// Where processes and control groups are shown, and whose they are.
struct UnitScene {
    std::string procRoot = "/proc";
    std::string cgroupRoot = "/sys/fs/cgroup";
    std::uint32_t uid = 0;
};

/// The units of these processes as they are now: each an application's unit of this user that holds no other
/// process, in a tree in which the manager shares out the CPU. Else none.
std::vector<LoweredUnit> unitsOf(const UnitScene& scene, UserManager& manager, const PidSet& pids);

/// False if the kernel does not show that it was done.
bool lowerUnits(const UnitScene& scene, UserManager& manager, const std::vector<LoweredUnit>& units);
/// Writes back what was recorded, to the units that are still there as lowerUnits() left them. False if the kernel
/// does not show it.
bool raiseUnits(const UnitScene& scene, UserManager& manager, const std::vector<LoweredUnit>& units);

}  // namespace ravik::platform
