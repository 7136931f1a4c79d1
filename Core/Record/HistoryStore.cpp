#include "Core/Record/HistoryStore.h"

#include <algorithm>
#include <system_error>

#include "Core/Record/HistoryCache.h"
#include "Core/Record/LineFold.h"
#include "Core/Record/LogBytes.h"
#include "Core/Record/LogFiles.h"

namespace ravik::HistoryStore {

namespace {

struct Reader {
    LogBytes bytes;
    LineFold fold;

    void ingest(DayAggregate& day, const std::filesystem::path& file) {
        if (!bytes.open(file, day.offset)) return;
        fold.begin(day);
        for (std::string_view block = bytes.next(); !block.empty(); block = bytes.next()) {
            forEachLine(block, [&](std::string_view line) { fold.apply(line); });
            day.offset += block.size();
        }
    }
};

DayAggregate fresh(const std::string& name) {
    DayAggregate day;
    day.day = name;
    return day;
}

DayAggregate known(const std::string& name, const std::filesystem::path& cacheFile, HistoryMemo& memo) {
    if (const auto at = memo.find(name); at != memo.end()) return std::move(at->second);
    return HistoryCache::read(cacheFile).value_or(fresh(name));
}

std::uint64_t sizeOf(const std::filesystem::path& file) {
    std::error_code failed;
    const auto size = std::filesystem::file_size(file, failed);
    return failed ? 0 : size;
}

}  // namespace

std::vector<DayAggregate> load(const std::filesystem::path& logDir, const std::filesystem::path& cacheDir,
                               HistoryMemo memo) {
    std::vector<DayAggregate> days;
    const auto files = logFiles(logDir);
    std::error_code ignored;
    std::filesystem::create_directories(cacheDir, ignored);
    Reader reader;
    for (const auto& file : files) {
        const std::string name = file.stem().string();
        const auto cacheFile = cacheDir / (name + ".json");
        DayAggregate day = known(name, cacheFile, memo);
        const std::uint64_t size = sizeOf(file);
        if (day.offset > size) day = fresh(name);
        if (day.offset < size) {
            reader.ingest(day, file);
            HistoryCache::write(cacheFile, day);
        }
        days.push_back(std::move(day));
    }
    return days;
}

void ingest(DayAggregate& day, const std::filesystem::path& file) { Reader().ingest(day, file); }

void apply(std::string_view line, DayAggregate& day) {
    std::string padded;
    padded.reserve(line.size() + LogBytes::padding);
    padded = line;
    LineFold fold;
    fold.begin(day);
    fold.apply(padded);
}

}  // namespace ravik::HistoryStore
