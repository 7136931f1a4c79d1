#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

#include "Core/Record/DayAggregate.h"

/// Folds the log, day by day, into aggregates. Never fails and never writes to the log: what cannot be read is
/// history that is missing. Any thread; the log may be written to meanwhile, also by other processes.
namespace ravik::HistoryStore {

/// One aggregate for each "*.jsonl" in `logDir`, ascending by name. Starts from `memo`, else from the day's file in
/// `cacheDir`, and reads only the bytes that have come since. Slow the first time: not on the main loop.
std::vector<DayAggregate> load(const std::filesystem::path& logDir, const std::filesystem::path& cacheDir,
                               HistoryMemo memo = {});

/// Reads the whole lines behind the aggregate's offset. A last line without a line feed waits for it.
void ingest(DayAggregate& day, const std::filesystem::path& file);

/// One line without its line feed. A line that does not fit is dropped.
void apply(std::string_view line, DayAggregate& day);

}  // namespace ravik::HistoryStore
