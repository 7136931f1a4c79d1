#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Core/Watch/Snapshot.h"
#include "Core/Watch/Thresholds.h"

namespace ravik {

/// The short memory behind "busy for two hours" and "grew by 3 GB in ten minutes". A value; not saved.
struct Trend {
    struct Sample {
        Time at = 0;
        std::unordered_map<std::string, std::uint64_t> bytes;  // by group name
        friend bool operator==(const Sample&, const Sample&) = default;
    };
    struct Low {
        std::uint64_t bytes = 0;
        Time at = 0;
        friend bool operator==(const Low&, const Low&) = default;
    };

    static constexpr double samplePeriod = 60.0;  // seconds at least between two samples
    static constexpr double sampleLife = 900.0;   // seconds

    /// When each process was first seen at or above hogCPUPercent, without a break.
    std::unordered_map<Pid, Time> busySince;
    /// Oldest first.
    std::vector<Sample> held;

    void record(const Snapshot& snapshot, const Thresholds& limits);

    /// The least that a group held, and when first; a sample without it counts as 0. Absent without samples.
    std::optional<Low> low(std::string_view group) const;

    friend bool operator==(const Trend&, const Trend&) = default;
};

}  // namespace ravik
