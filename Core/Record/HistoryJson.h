#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "Core/Record/HistoryData.h"
#include "Core/Screens/HistoryScreen.h"

/// The history for the terminal: one JSON object, or text for people. Moments are seconds since 1970; days and dates in
/// sentences are those of the process's time zone.
namespace ravik::HistoryJson {

/// What is asked for. `now` stands for the moment of asking, where the caller gave one; `clock` is the real one.
struct Query {
    HistoryScreen::Span span = HistoryScreen::Span::day;
    std::optional<Time> now;
    Time clock = 0;
};

nlohmann::json object(const std::vector<DayAggregate>& days, const Query& query);
std::string text(const std::vector<DayAggregate>& days, const Query& query, const Host& host);

/// {"at", "what", "ids", "mb", "survivors"}
nlohmann::json eventJson(const HistoryEvent& event);

}  // namespace ravik::HistoryJson
