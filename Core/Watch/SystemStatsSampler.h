#pragma once

#include <cstdint>
#include <optional>

#include "Core/Base/Time.h"
#include "Core/Watch/SystemStats.h"

namespace ravik {

class Clock;
class MachineReadings;

/// Reads the machine-wide numbers of one tick. Each falls back by itself when its reading fails. Called from one
/// background task at a time; what it is given must outlive it.
class SystemStatsSampler {
public:
    SystemStatsSampler(MachineReadings& machine, const Clock& clock) : m_machine(machine), m_clock(clock) {}

    SystemStats sample();

private:
    void readMemory(SystemStats& stats);

    struct SwapOut {
        std::uint64_t pages = 0;
        Time at = 0;
    };

    MachineReadings& m_machine;
    const Clock& m_clock;
    std::optional<SwapOut> m_lastSwapOut;  // of the last sample whose memory reading succeeded
};

}  // namespace ravik
