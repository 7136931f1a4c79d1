#include <algorithm>

#include <fmt/format.h>

#include "Core/Diagnosis/Diagnoser.h"
#include "Core/Screens/HistoryScreen.h"
#include "Core/Wording/AppInfo.h"
#include "Core/Wording/Fmt.h"

namespace ravik::HistoryScreen {

namespace {

constexpr std::size_t mostLanes = 14;

/// A fix that came before the span leaves nothing of the lane to see.
double seconds(const HistoryData::Lane& lane) { return std::max(0.0, lane.end - lane.start); }

LaneIcon iconOf(std::string_view cause) {
    if (cause.starts_with("automation:")) return LaneIcon::globe;
    return cause.starts_with("db:") ? LaneIcon::cylinder : LaneIcon::codeBracket;
}

LaneRow rowOf(HistoryData::Lane lane, const Host& host) {
    LaneRow row;
    row.isLeftAlone = lane.cause.starts_with("db:") || host.tables().databases.contains(lane.label);
    row.icon = iconOf(lane.cause);
    const std::string lived = Diagnoser::hours(seconds(lane));
    row.text = row.isLeftAlone ? "left alone " + lived : lived;
    row.details = {{"Leftover", lane.label}, {"From", AppInfo::dayMinute(lane.start)}};
    if (lane.endedBy) row.details.emplace_back("Ended", AppInfo::dayMinute(lane.endedBy->at));
    row.lane = std::move(lane);
    return row;
}

}  // namespace

std::vector<LaneRow> laneRows(std::vector<HistoryData::Lane> lanes, const Host& host) {
    std::vector<std::size_t> order(lanes.size());
    for (std::size_t at = 0; at < order.size(); ++at) order[at] = at;
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return seconds(lanes[a]) > seconds(lanes[b]); });
    if (order.size() > mostLanes) order.resize(mostLanes);
    std::sort(order.begin(), order.end());
    std::vector<LaneRow> rows;
    for (const std::size_t at : order) rows.push_back(rowOf(std::move(lanes[at]), host));
    return rows;
}

std::string laneSentence(std::span<const LaneRow> rows) {
    const auto ended =
        std::count_if(rows.begin(), rows.end(), [](const LaneRow& row) { return row.lane.endedBy.has_value(); });
    std::string sentence = fmt::format("{}, {} ended by Ravik. ", Fmt::plural(rows.size(), "leftover"), ended);
    for (const LaneRow& row : rows) {
        if (&row != &rows.front()) sentence += ", ";
        sentence += fmt::format("{} lived {}", row.lane.label, Diagnoser::hours(seconds(row.lane)));
    }
    return sentence;
}

}  // namespace ravik::HistoryScreen
