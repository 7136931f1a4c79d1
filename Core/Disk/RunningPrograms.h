#pragma once

#include <vector>

#include "Core/Host/Host.h"
#include "Core/Watch/Proc.h"
#include "Platform/Platform.h"

namespace ravik::DiskScanner {

/// The user's processes as applications, each under the name of its group and of its program. Knows a browser that the
/// desktop does not list: on a display that tells nothing, or seen from a session without one.
std::vector<RunningApp> runningPrograms(const std::vector<Proc>& procs, const Host& host);

}  // namespace ravik::DiskScanner
