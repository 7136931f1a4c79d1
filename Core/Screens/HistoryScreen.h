#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Core/Host/Host.h"
#include "Core/Record/HistoryData.h"

/// What the History screen says of its data, as plain records and pure functions. Sizes are gigabytes of 2^30 bytes
/// where a name does not say megabytes. Any thread.
namespace ravik::HistoryScreen {

enum class Span { day, week };
/// "24 h", "8 days"
std::string_view label(Span span);

inline constexpr std::string_view reading = "Reading the log…";
inline constexpr std::string_view collectingTitle = "Collecting";
inline constexpr std::string_view collectingText = "History fills in hour by hour. Check back soon.";
inline constexpr std::string_view swapTitle = "Memory spilled to disk, hourly average";
inline constexpr std::string_view fixLegend = "Ravik freed memory, or you quit an app";
inline constexpr std::string_view scrubLegend = "The hour you are pointing at";
inline constexpr std::string_view appsTitle = "Each app's memory over time (thicker = more)";
inline constexpr std::string_view appsFixLegend = "A fix";
inline constexpr std::array<std::string_view, 4> laneLegends{
    "Left running after their window closed", "Left alone on purpose (a database)", "Ended by Ravik", "A fix"};
inline constexpr std::string_view eventsTitle = "What Ravik did";
inline constexpr std::string_view noEvents = "Nothing freed in this span.";

/// What is shown of the data. Absent where there is neither a bucket nor a `now`.
std::optional<TimeRange> range(const HistoryData& data, Span span, const std::optional<Time>& now);
/// Those whose start lies in the range; none without one.
std::vector<const HourBucket*> hours(const HistoryData& data, const std::optional<TimeRange>& range);
std::vector<const HistoryEvent*> events(const HistoryData& data, const std::optional<TimeRange>& range);

struct Headline {
    std::string value;
    std::string unit;
    std::string caption;
    std::string sentence;
    friend bool operator==(const Headline&, const Headline&) = default;
};
Headline headline(const HistoryData& data, const std::optional<TimeRange>& range);

using Hours = std::span<const HourBucket* const>;

/// Where the swap axis is cut, in whole gigabytes, so that one spike does not flatten the rest.
double cap(Hours hours);
inline double axisTop(double cap) { return cap * 1.08; }
inline int axisStep(double cap) { return cap > 24 ? 8 : 4; }

/// One point of the swap line.
struct Point {
    Time hour = 0;
    double average = 0;
    /// Never above the cap.
    double drawn = 0;
    /// "peak 30.0 GB" where it is cut; else empty.
    std::string peak;
    friend bool operator==(const Point&, const Point&) = default;
};
std::vector<Point> points(Hours hours);

/// The chart in one sentence, for those who cannot see it.
std::string swapSummary(Hours hours, std::size_t events);

/// The three that held the most in any hour.
std::vector<std::string> topApps(Hours hours);
/// The most megabytes that the app held in any of the hours.
std::int64_t appTop(Hours hours, std::string_view app);
/// "Slack: up to 1.2 GB held"
std::string appTitle(Hours hours, std::string_view app);

/// The start of the hour that the pointer is in.
Time hourAt(Time pointer);
/// "Sun 1 Mar · 09:00", "1.2 GB on disk", then the hour's three largest apps.
std::vector<std::string> hourCard(const HourBucket& bucket);

enum class LaneIcon { globe, cylinder, codeBracket };
struct LaneRow {
    HistoryData::Lane lane;
    /// A database, which is left alone on purpose; else a leftover.
    bool isLeftAlone = false;
    LaneIcon icon = LaneIcon::codeBracket;
    /// "3 h", "left alone 2 days"
    std::string text;
    /// Heading and text.
    std::vector<std::pair<std::string, std::string>> details;
    friend bool operator==(const LaneRow&, const LaneRow&) = default;
};
/// At most the 14 longest, in the order of HistoryData::lanes().
std::vector<LaneRow> laneRows(std::vector<HistoryData::Lane> lanes, const Host& host);
/// All lanes in words.
std::string laneSentence(std::span<const LaneRow> rows);

struct EventRow {
    std::string time;
    std::string what;
    /// Empty where nothing was given back.
    std::string amount;
    std::string outcome;
    friend bool operator==(const EventRow&, const EventRow&) = default;
};
/// Newest first.
std::vector<EventRow> eventRows(std::span<const HistoryEvent* const> events);

}  // namespace ravik::HistoryScreen
