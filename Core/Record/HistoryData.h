#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Core/Record/DayAggregate.h"

namespace ravik {

/// Both ends belong to it.
struct TimeRange {
    Time start = 0;
    Time end = 0;

    bool contains(Time time) const { return start <= time && time <= end; }
    friend bool operator==(const TimeRange&, const TimeRange&) = default;
};

/// All days in one: what the history is asked about. A value; any thread.
struct HistoryData {
    /// One bucket an hour, ascending.
    std::vector<HourBucket> hours;
    /// Ascending by time; equal times in the order of the log.
    std::vector<HistoryEvent> events;
    Titles titles;

    HistoryData() = default;
    /// Hours that two files share are joined; of two titles the later file's holds.
    explicit HistoryData(const std::vector<DayAggregate>& days);

    /// How long a leftover or a database without a terminal stayed on the books.
    struct Lane {
        /// "{cause}@{start}" with the start before clipping, whole seconds since 1970.
        std::string id;
        std::string cause;
        std::string label;
        Time start = 0;
        Time end = 0;
        std::optional<HistoryEvent> endedBy;

        friend bool operator==(const Lane&, const Lane&) = default;
    };
    /// Clipped to the range, ascending by start, label and id.
    std::vector<Lane> lanes(const TimeRange& range) const;

    /// Average swap in GB before and within an hour after the event.
    struct Drop {
        double before = 0;
        double after = 0;
        HistoryEvent event;
    };
    /// The fix after which swap fell the most, where that was more than half a GB; the earliest of equals.
    std::optional<Drop> biggestDrop(const TimeRange& range) const;
};

}  // namespace ravik
