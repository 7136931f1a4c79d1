#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "Core/Record/DayAggregate.h"

/// Aggregates on disk: one JSON object a day, as docs/log-format.md tells. Any thread, any number of processes.
namespace ravik::HistoryCache {

/// Absent where a figure is not finite and JSON could not carry it.
std::optional<std::string> encode(const DayAggregate& day);
/// Absent unless all of it is there, of the right type and of the current format.
std::optional<DayAggregate> decode(std::string_view bytes);

/// Absent where there is none, it cannot be read, or decode() refuses it.
std::optional<DayAggregate> read(const std::filesystem::path& file);
/// False, and an older file untouched, if it cannot be written.
bool write(const std::filesystem::path& file, const DayAggregate& day);

/// Removes what a write that was killed an hour or more ago has left in the folder.
void sweep(const std::filesystem::path& folder);

}  // namespace ravik::HistoryCache
