#include "Core/Record/HistoryData.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>

#include <fmt/format.h>

#include "Core/Base/Saturating.h"
#include "Core/Record/FindingLabel.h"

namespace ravik {

namespace {

constexpr double hourSeconds = 3600;
/// A cause that was away for longer comes back as a lane of its own.
constexpr double laneGapSeconds = 7200;
constexpr double leastDropGB = 0.5;

void join(HourBucket& into, const HourBucket& other) {
    into.samples = saturatingAdd(into.samples, other.samples);
    into.swapSum += other.swapSum;
    into.swapMax = std::max(into.swapMax, other.swapMax);
    into.memFreeMin = std::min(into.memFreeMin, other.memFreeMin);
    into.loadMax = std::max(into.loadMax, other.loadMax);
    into.reclaimMB = std::max(into.reclaimMB, other.reclaimMB);
    for (const auto& [app, mb] : other.apps) {
        const auto [at, fresh] = into.apps.try_emplace(app, mb);
        if (!fresh) at->second = std::max(at->second, mb);
    }
    into.causes.insert(other.causes.begin(), other.causes.end());
}

bool hasLane(std::string_view cause) {
    return cause.starts_with("orphan:") || cause.starts_with("automation:") || cause.starts_with("db:");
}

struct Sighting {
    Time start = 0;
    Time last = 0;
};

/// The lane of a cause that is over, where any of it lies in the range.
std::optional<HistoryData::Lane> closedLane(const HistoryData& data, const TimeRange& range, std::string_view cause,
                                            const Sighting& seen) {
    const Time end = seen.last + hourSeconds;
    if (end <= range.start || seen.start >= range.end) return {};
    const auto endedBy = std::find_if(data.events.begin(), data.events.end(), [&](const HistoryEvent& event) {
        return event.at >= seen.start && event.at <= end + hourSeconds &&
               std::find(event.ids.begin(), event.ids.end(), cause) != event.ids.end();
    });
    HistoryData::Lane lane;
    lane.id = fmt::format("{}@{}", cause, saturatingCut(seen.start));
    lane.cause = cause;
    lane.label = HistoryStore::label(cause, data.titles);
    lane.start = std::max(seen.start, range.start);
    lane.end = std::min(range.end, end);
    if (endedBy != data.events.end()) {
        lane.end = std::min(range.end, endedBy->at);
        lane.endedBy = *endedBy;
    }
    return lane;
}

}  // namespace

HistoryData::HistoryData(const std::vector<DayAggregate>& days) {
    std::map<std::int64_t, HourBucket> joined;
    for (const DayAggregate& day : days) {
        for (const auto& [hour, bucket] : day.hours) {
            const auto [at, fresh] = joined.try_emplace(hour, bucket);
            if (!fresh) join(at->second, bucket);
        }
        events.insert(events.end(), day.events.begin(), day.events.end());
        for (const auto& [id, title] : day.titles) titles.insert_or_assign(id, title);
    }
    hours.reserve(joined.size());
    for (auto& [hour, bucket] : joined) hours.push_back(std::move(bucket));
    std::stable_sort(hours.begin(), hours.end(), [](const auto& a, const auto& b) { return a.start < b.start; });
    std::stable_sort(events.begin(), events.end(), [](const auto& a, const auto& b) { return a.at < b.at; });
}

std::vector<HistoryData::Lane> HistoryData::lanes(const TimeRange& range) const {
    std::vector<Lane> lanes;
    const auto close = [&](std::string_view cause, const Sighting& seen) {
        if (auto lane = closedLane(*this, range, cause, seen)) lanes.push_back(std::move(*lane));
    };
    std::unordered_map<std::string_view, Sighting> open;
    for (const HourBucket& bucket : hours) {
        for (const std::string& cause : bucket.causes) {
            if (!hasLane(cause)) continue;
            const auto [at, fresh] = open.try_emplace(cause, Sighting{bucket.start, bucket.start});
            Sighting& seen = at->second;
            if (!fresh && bucket.start - seen.last > laneGapSeconds) {
                close(cause, seen);
                seen.start = bucket.start;
            }
            seen.last = bucket.start;
        }
    }
    for (const auto& [cause, seen] : open) close(cause, seen);
    std::sort(lanes.begin(), lanes.end(), [](const Lane& a, const Lane& b) {
        return std::tie(a.start, a.label, a.id) < std::tie(b.start, b.label, b.id);
    });
    return lanes;
}

std::optional<HistoryData::Drop> HistoryData::biggestDrop(const TimeRange& range) const {
    std::optional<Drop> biggest;
    for (const HistoryEvent& event : events) {
        if (!range.contains(event.at)) continue;
        auto next = std::upper_bound(hours.begin(), hours.end(), event.at,
                                     [](Time at, const HourBucket& bucket) { return at < bucket.start; });
        if (next == hours.begin()) continue;
        const double before = std::prev(next)->swapAverage();
        double after = before;
        for (auto at = next; at != hours.end() && at->start <= event.at + hourSeconds; ++at) {
            after = at == next ? at->swapAverage() : std::min(after, at->swapAverage());
        }
        const double least = biggest ? biggest->before - biggest->after : leastDropGB;
        if (before - after > least) biggest = Drop{before, after, event};
    }
    return biggest;
}

}  // namespace ravik
