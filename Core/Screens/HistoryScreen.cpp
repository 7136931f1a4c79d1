#include "Core/Screens/HistoryScreen.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "Core/Base/Saturating.h"
#include "Core/Wording/AppInfo.h"
#include "Core/Wording/Fmt.h"
#include "Core/Wording/LocalDate.h"

namespace ravik::HistoryScreen {

namespace {

constexpr double hourSeconds = 3600;
constexpr double daySeconds = 86400;
constexpr double weekSeconds = 691200;  // 8 days
constexpr double leastCap = 8;
constexpr double emptyCap = 21;
constexpr std::size_t mostApps = 3;

using Apps = std::vector<std::pair<std::string, std::int64_t>>;

/// The largest first, equals by name.
Apps largest(const HourBucket::Apps& held) {
    Apps apps(held.begin(), held.end());
    std::stable_sort(apps.begin(), apps.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
    if (apps.size() > mostApps) apps.resize(mostApps);
    return apps;
}

std::string gb(std::int64_t mb) { return fmt::format("{:.1f} GB", static_cast<double>(mb) / 1000.0); }

/// The hour of the highest swap, the earliest of equals; null without hours.
const HourBucket* highest(Hours hours) {
    const auto at = std::max_element(hours.begin(), hours.end(),
                                     [](const auto* a, const auto* b) { return a->swapMax < b->swapMax; });
    return at == hours.end() ? nullptr : *at;
}

template <typename Item, typename When>
std::vector<const Item*> within(const std::vector<Item>& items, const std::optional<TimeRange>& range, When when) {
    std::vector<const Item*> kept;
    if (!range) return kept;
    for (const Item& item : items) {
        if (range->contains(when(item))) kept.push_back(&item);
    }
    return kept;
}

}  // namespace

std::string_view label(Span span) { return span == Span::day ? "24 h" : "8 days"; }

std::optional<TimeRange> range(const HistoryData& data, Span span, const std::optional<Time>& now) {
    if (!now && data.hours.empty()) return {};
    const Time end = now ? *now : data.hours.back().start + hourSeconds;
    if (span == Span::day) return TimeRange{end - daySeconds, end};
    const Time start = end - weekSeconds;
    if (data.hours.empty()) return TimeRange{start, end};
    return TimeRange{std::min(end, std::max(start, data.hours.front().start)), end};
}

std::vector<const HourBucket*> hours(const HistoryData& data, const std::optional<TimeRange>& range) {
    return within(data.hours, range, [](const HourBucket& bucket) { return bucket.start; });
}

std::vector<const HistoryEvent*> events(const HistoryData& data, const std::optional<TimeRange>& range) {
    return within(data.events, range, [](const HistoryEvent& event) { return event.at; });
}

Headline headline(const HistoryData& data, const std::optional<TimeRange>& range) {
    if (const auto drop = range ? data.biggestDrop(*range) : std::nullopt) {
        return {fmt::format("{:.1f} → {:.1f}", drop->before, drop->after), "GB", "spilled to disk",
                fmt::format("It fell within an hour of {}, {}.", drop->event.what, LocalDate::day(drop->event.at))};
    }
    const HourBucket* const worst = highest(hours(data, range));
    return {fmt::format("{:.1f}", worst ? worst->swapMax : 0.0), "GB", "spilled to disk at worst",
            "No fix in this span yet."};
}

double cap(Hours hours) {
    if (hours.empty()) return emptyCap;
    std::vector<double> averages;
    for (const HourBucket* bucket : hours) averages.push_back(bucket->swapAverage());
    std::sort(averages.begin(), averages.end());
    const auto at = static_cast<std::size_t>(static_cast<double>(averages.size()) * 0.98);
    return std::max(std::ceil(averages[std::min(averages.size() - 1, at)] * 1.3), leastCap);
}

std::vector<Point> points(Hours hours) {
    const double most = cap(hours);
    std::vector<Point> line;
    for (const HourBucket* bucket : hours) {
        const double average = bucket->swapAverage();
        line.push_back({bucket->start, average, std::min(average, most),
                        average > most ? fmt::format("peak {:.1f} GB", average) : std::string()});
    }
    return line;
}

std::string swapSummary(Hours hours, std::size_t events) {
    const HourBucket* const peak = highest(hours);
    return fmt::format("Swap used, hourly: now {:.1f} GB, peak {:.1f} GB at {}. {} {} marked.",
                       hours.empty() ? 0.0 : hours.back()->swapAverage(), peak ? peak->swapMax : 0.0,
                       peak ? AppInfo::dayMinute(peak->start) : "—", events, events == 1 ? "fix" : "fixes");
}

std::vector<std::string> topApps(Hours hours) {
    HourBucket::Apps most;
    for (const HourBucket* bucket : hours) {
        for (const auto& [app, mb] : bucket->apps) {
            const auto [at, fresh] = most.try_emplace(app, mb);
            if (!fresh) at->second = std::max(at->second, mb);
        }
    }
    std::vector<std::string> names;
    for (auto& [app, mb] : largest(most)) names.push_back(app);
    return names;
}

std::int64_t appTop(Hours hours, std::string_view app) {
    std::int64_t most = 0;
    for (const HourBucket* bucket : hours) {
        if (const auto at = bucket->apps.find(app); at != bucket->apps.end()) most = std::max(most, at->second);
    }
    return most;
}

std::string appTitle(Hours hours, std::string_view app) {
    return fmt::format("{}: up to {} held", app, gb(appTop(hours, app)));
}

Time hourAt(Time pointer) { return std::floor(pointer / hourSeconds) * hourSeconds; }

std::vector<std::string> hourCard(const HourBucket& bucket) {
    std::vector<std::string> lines{LocalDate::hour(bucket.start),
                                   fmt::format("{:.1f} GB on disk", bucket.swapAverage())};
    for (const auto& [app, mb] : largest(bucket.apps)) lines.push_back(fmt::format("{} {}", app, gb(mb)));
    return lines;
}

std::vector<EventRow> eventRows(std::span<const HistoryEvent* const> events) {
    std::vector<EventRow> rows;
    for (auto at = events.rbegin(); at != events.rend(); ++at) {
        const HistoryEvent& event = **at;
        rows.push_back({AppInfo::dayMinute(event.at), event.what,
                        event.mb >= 1 ? Fmt::mb(saturatingBytes(event.mb)) : std::string(),
                        event.survivors > 0 ? fmt::format("{} still running", event.survivors) : "all ended"});
    }
    return rows;
}

}  // namespace ravik::HistoryScreen
