#pragma once

#include <cstdint>

namespace ravik {

/// One sample of the machine. A reading that failed has its fallback, which but for the GPU cannot be told from 0.
struct SystemStats {
    std::uint64_t swapUsedBytes = 0;
    /// Bytes a second written to swap since the previous sample; 0 on the first.
    double swapOutBytesPerSec = 0;
    /// What could be handed out without paging, as a whole percent of installed memory, cut.
    int memoryFreePercent = 0;
    /// Room on the root volume for an ordinary user.
    std::uint64_t diskFreeBytes = 0;
    /// 1-minute load average.
    double loadAverage = 0;
    /// Logical processors.
    int cpuCount = 0;
    /// Utilisation of the GPU; -1 means not known.
    int gpuPercent = -1;

    friend bool operator==(const SystemStats&, const SystemStats&) = default;
};

}  // namespace ravik
