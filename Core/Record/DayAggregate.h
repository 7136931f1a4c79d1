#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "Core/Base/Time.h"

namespace ravik {

/// Finding id to title.
using Titles = std::map<std::string, std::string>;

/// What the ticks and diagnoses of one hour add up to. Gigabytes are 2^30 bytes, megabytes 2^20.
struct HourBucket {
    using Apps = std::map<std::string, std::int64_t, std::less<>>;

    Time start = 0;
    std::int64_t samples = 0;  // ticks
    double swapSum = 0;        // GB over all samples
    double swapMax = 0;        // GB
    std::int64_t memFreeMin = 100;
    double loadMax = 0;
    std::int64_t reclaimMB = 0;  // the most that was on offer
    Apps apps;                   // the most megabytes each was seen holding
    std::set<std::string, std::less<>> causes;

    /// Average swap in GB; 0 without a sample.
    double swapAverage() const { return samples == 0 ? 0.0 : swapSum / static_cast<double>(samples); }

    friend bool operator==(const HourBucket&, const HourBucket&) = default;
};

/// One thing that was done about the machine.
struct HistoryEvent {
    Time at = 0;
    std::string what;
    /// Findings it settled; empty where the line named none.
    std::vector<std::string> ids;
    std::int64_t mb = 0;
    /// Processes that were still alive afterwards.
    std::int64_t survivors = 0;

    friend bool operator==(const HistoryEvent&, const HistoryEvent&) = default;
};

/// One log file, folded. A cache of the log: losing it loses nothing.
struct DayAggregate {
    /// Raise it whenever the same log would be folded into something else.
    static constexpr std::int64_t currentFormat = 1;

    std::int64_t format = currentFormat;
    /// The log file's name without its extension: a local calendar day.
    std::string day;
    /// Bytes of the log folded so far: just behind a line feed, or 0.
    std::uint64_t offset = 0;
    /// By whole hours since 1970, UTC.
    std::map<std::int64_t, HourBucket> hours;
    /// In the order of the log.
    std::vector<HistoryEvent> events;
    Titles titles;

    friend bool operator==(const DayAggregate&, const DayAggregate&) = default;
};

/// Aggregates of an earlier load, by day.
using HistoryMemo = std::unordered_map<std::string, DayAggregate>;

}  // namespace ravik
