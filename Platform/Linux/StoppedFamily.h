#pragma once

#include <filesystem>
#include <vector>

#include "Core/Watch/Proc.h"

namespace ravik::platform {

/// The process and its descendants from the same executable, as far as they are stopped: what has to be continued
/// before an application can hear anything. Of the records only pid, owner and start are filled in. What runs
/// another program is left out: a job that was stopped in a terminal stays so. Any thread.
std::vector<Proc> stoppedFamily(const std::filesystem::path& procRoot, Pid root);

}  // namespace ravik::platform
