#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "Core/Diagnosis/Diagnoser.h"
#include "Core/Diagnosis/Trend.h"
#include "Core/Host/Host.h"
#include "Core/Watch/Snapshot.h"

namespace ravik {

/// All that one diagnosis is made of, whether the machine was just read or a capture is replayed.
struct Reading {
    std::vector<Proc> processes;
    SystemStats stats;
    PidSet managed;
    Host host;
    Thresholds limits;
    KeepSet keep;
    /// As of the previous tick; shared, since it holds a quarter of an hour of every app's memory. Absent: empty.
    std::shared_ptr<const Trend> trend;
    std::uint64_t ramBytes = 0;
    Time now = 0;
};

/// The finished picture of a reading. Pure.
Snapshot diagnosed(const Reading& reading);

}  // namespace ravik
