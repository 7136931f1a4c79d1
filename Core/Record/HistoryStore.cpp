#include "Core/Record/HistoryStore.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>

#include "Core/Record/HistoryCache.h"
#include "Core/Record/LineFold.h"
#include "Core/Record/LogBytes.h"
#include "Core/Record/LogFiles.h"

namespace ravik::HistoryStore {

namespace {

namespace fs = std::filesystem;

class Reader {
public:
    void ingest(DayAggregate& day, const fs::path& file) {
        if (!m_bytes.open(file, day.offset)) return;
        m_fold.begin(day);
        for (std::string_view block = m_bytes.next(); !block.empty(); block = m_bytes.next()) {
            forEachLine(block, [&](std::string_view line) { m_fold.apply(line); });
            day.offset += block.size();
        }
    }

private:
    LogBytes m_bytes;
    LineFold m_fold;
};

DayAggregate fresh(const std::string& name) {
    DayAggregate day;
    day.day = name;
    return day;
}

DayAggregate known(const std::string& name, const fs::path& cacheFile, HistoryMemo& memo) {
    if (const auto at = memo.find(name); at != memo.end()) return std::move(at->second);
    return HistoryCache::read(cacheFile).value_or(fresh(name));
}

std::uint64_t sizeOf(const fs::path& file) {
    std::error_code failed;
    const auto size = fs::file_size(file, failed);
    return failed ? 0 : size;
}

/// A day with bytes to read.
struct Grown {
    fs::path file, cacheFile;
    DayAggregate& day;
};

/// Days do not touch each other, so a first look at weeks of log spreads over a few cores; the usual look, at the
/// end of one file, stays on its thread.
void readAll(const std::vector<Grown>& grown, std::uint64_t bytes) {
    constexpr std::uint64_t worthAThread = 4 << 20;
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        Reader reader;
        for (std::size_t at = next++; at < grown.size(); at = next++) {
            reader.ingest(grown[at].day, grown[at].file);
            HistoryCache::write(grown[at].cacheFile, grown[at].day);
        }
    };
    const std::uint64_t cores = std::clamp(std::thread::hardware_concurrency(), 1u, 4u);
    const std::uint64_t threads = std::min({cores, std::uint64_t{grown.size()}, bytes / worthAThread});
    std::vector<std::thread> others;
    try {
        while (others.size() + 1 < threads) others.emplace_back(work);
    } catch (const std::system_error&) {
        // As many as the system gives.
    }
    work();
    for (std::thread& other : others) other.join();
}

}  // namespace

std::vector<DayAggregate> load(const fs::path& logDir, const fs::path& cacheDir, HistoryMemo memo) {
    const auto files = logFiles(logDir);
    std::error_code ignored;
    fs::create_directories(cacheDir, ignored);
    std::vector<DayAggregate> days;
    days.reserve(files.size());
    std::vector<Grown> grown;
    std::uint64_t bytes = 0;
    for (const auto& file : files) {
        const std::string name = file.stem().string();
        const auto cacheFile = cacheDir / (name + ".json");
        DayAggregate& day = days.emplace_back(known(name, cacheFile, memo));
        const std::uint64_t size = sizeOf(file);
        if (day.offset > size) day = fresh(name);
        if (day.offset == size) continue;
        grown.push_back({file, cacheFile, day});
        bytes += size - day.offset;
    }
    if (!grown.empty()) {
        HistoryCache::sweep(cacheDir);
        readAll(grown, bytes);
    }
    return days;
}

void ingest(DayAggregate& day, const fs::path& file) { Reader().ingest(day, file); }

void apply(std::string_view line, DayAggregate& day) {
    const std::string padded = std::string(line) + std::string(LogBytes::padding, '\0');
    LineFold fold;
    fold.begin(day);
    fold.apply(std::string_view(padded).substr(0, line.size()));
}

}  // namespace ravik::HistoryStore
