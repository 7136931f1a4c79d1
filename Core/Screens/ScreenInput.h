#pragma once

#include <cstdint>

#include "Core/Base/Time.h"
#include "Core/Host/Host.h"
#include "Core/Watch/ProcessIndex.h"
#include "Core/Watch/Snapshot.h"

namespace ravik {

/// One reading, as the makers of a screen's records want it. Holds references: a thing of one call.
struct ScreenInput {
    const Snapshot& snapshot;
    /// Over `snapshot.processes`.
    const ProcessIndex& index;
    const Host& host;
    /// Installed memory, bytes.
    std::uint64_t ram = 0;
    Time now = 0;
    /// There is a Disk screen to go to.
    bool hasDisk = true;
};

}  // namespace ravik
