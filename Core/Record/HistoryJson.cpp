#include "Core/Record/HistoryJson.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Core/Record/WeekProof.h"

namespace ravik::HistoryJson {

namespace {

using Json = nlohmann::json;

Json bucketJson(const HourBucket& bucket) {
    return {{"start", bucket.start},           {"samples", bucket.samples},
            {"swapSum", bucket.swapSum},       {"swapMax", bucket.swapMax},
            {"memFreeMin", bucket.memFreeMin}, {"loadMax", bucket.loadMax},
            {"reclaimMB", bucket.reclaimMB},   {"apps", bucket.apps},
            {"causes", bucket.causes}};
}

template <typename Item, typename Convert>
Json arrayOf(const std::vector<Item>& items, Convert convert) {
    Json result = Json::array();
    for (const Item& item : items) result.push_back(convert(item));
    return result;
}

Json dayJson(const DayAggregate& day) {
    Json hours = Json::object();
    for (const auto& [hour, bucket] : day.hours) hours[fmt::format("{}", hour)] = bucketJson(bucket);
    return {{"day", day.day},
            {"offset", day.offset},
            {"hours", std::move(hours)},
            {"events", arrayOf(day.events, eventJson)},
            {"titles", day.titles}};
}

Json laneJson(const HistoryData::Lane& lane) {
    return {{"id", lane.id},       {"cause", lane.cause},
            {"label", lane.label}, {"start", lane.start},
            {"end", lane.end},     {"endedBy", lane.endedBy ? eventJson(*lane.endedBy) : Json()}};
}

Json dropJson(const std::optional<HistoryData::Drop>& drop) {
    if (!drop) return nullptr;
    return {{"before", drop->before}, {"after", drop->after}, {"event", eventJson(drop->event)}};
}

Json headlineJson(const HistoryScreen::Headline& headline) {
    return {{"value", headline.value},
            {"unit", headline.unit},
            {"caption", headline.caption},
            {"sentence", headline.sentence}};
}

std::string padded(std::string_view left, std::size_t width) {
    // Sentences hold letters of two and three bytes; only scalars take a column.
    const auto columns = static_cast<std::size_t>(std::count_if(
        left.begin(), left.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
    return std::string(left) + std::string(columns < width ? width - columns : 0, ' ');
}

}  // namespace

Json eventJson(const HistoryEvent& event) {
    return {
        {"at", event.at}, {"what", event.what}, {"ids", event.ids}, {"mb", event.mb}, {"survivors", event.survivors}};
}

Json object(const std::vector<DayAggregate>& days, const Query& query) {
    const HistoryData data(days);
    const auto range = HistoryScreen::range(data, query.span, query.now);
    const auto hours = HistoryScreen::hours(data, range);
    const auto events = HistoryScreen::events(data, range);
    const auto week = WeekProof::line(days, query.now.value_or(query.clock));
    return {{"days", arrayOf(days, dayJson)},
            {"data",
             {{"hours", arrayOf(data.hours, bucketJson)},
              {"events", arrayOf(data.events, eventJson)},
              {"titles", data.titles}}},
            {"range", range ? Json{{"start", range->start}, {"end", range->end}} : Json()},
            {"lanes", arrayOf(range ? data.lanes(*range) : std::vector<HistoryData::Lane>(), laneJson)},
            {"biggestDrop", dropJson(range ? data.biggestDrop(*range) : std::nullopt)},
            {"topApps", HistoryScreen::topApps(hours)},
            {"cap", HistoryScreen::cap(hours)},
            {"headline", headlineJson(HistoryScreen::headline(data, range))},
            {"swapSummary", HistoryScreen::swapSummary(hours, events.size())},
            {"week", week ? Json(*week) : Json()}};
}

std::string text(const std::vector<DayAggregate>& days, const Query& query, const Host& host) {
    const HistoryData data(days);
    if (data.hours.empty()) {
        return fmt::format("{}\n{}\n", HistoryScreen::collectingTitle, HistoryScreen::collectingText);
    }
    const auto range = HistoryScreen::range(data, query.span, query.now);
    const auto hours = HistoryScreen::hours(data, range);
    const auto headline = HistoryScreen::headline(data, range);
    std::string out = fmt::format("{} {} {}\n{}\n", headline.value, headline.unit, headline.caption, headline.sentence);
    const auto events = HistoryScreen::events(data, range);
    out += HistoryScreen::swapSummary(hours, events.size()) + "\n";

    if (const auto apps = HistoryScreen::topApps(hours); !apps.empty()) out += "\nApps\n";
    for (const auto& app : HistoryScreen::topApps(hours)) out += "  " + HistoryScreen::appTitle(hours, app) + "\n";

    const auto lanes = HistoryScreen::laneRows(data.lanes(*range), host);
    if (!lanes.empty()) out += "\nLeftovers\n";
    std::size_t width = 0;
    for (const auto& row : lanes) width = std::max(width, row.lane.label.size());
    for (const auto& row : lanes) {
        out += fmt::format("  {}  {}{}\n", padded(row.lane.label, std::min<std::size_t>(width, 48)), row.text,
                           row.lane.endedBy ? ", ended by Ravik" : "");
    }

    out += fmt::format("\n{}\n", HistoryScreen::eventsTitle);
    if (events.empty()) out += fmt::format("  {}\n", HistoryScreen::noEvents);
    for (const auto& row : HistoryScreen::eventRows(events)) {
        out += fmt::format("  {}  {}{}, {}\n", row.time, row.what, row.amount.empty() ? "" : ", " + row.amount,
                           row.outcome);
    }
    if (const auto week = WeekProof::line(days, query.now.value_or(query.clock))) out += "\n" + *week + "\n";
    return out;
}

}  // namespace ravik::HistoryJson
