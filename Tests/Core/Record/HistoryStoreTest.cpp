#include "Core/Record/HistoryStore.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include "Tests/Core/Record/LogFolder.h"

namespace ravik {

namespace {

constexpr Time nineOClock = 1772355600;  // 2026-03-01T09:00:00Z
constexpr std::int64_t nineOClockHour = 492321;

std::string tick(double swap, const std::string& at = "2026-03-01T09:30:15Z") {
    return R"({"kind":"tick","swapGB":)" + std::to_string(swap) + R"(,"t":")" + at + "\"}\n";
}

struct HistoryStoreTest : testing::Test {
    LogFolder folder;
    std::vector<DayAggregate> load(HistoryMemo memo = {}) {
        return HistoryStore::load(folder.logs, folder.cache, std::move(memo));
    }
    DayAggregate only(HistoryMemo memo = {}) {
        const auto days = load(std::move(memo));
        EXPECT_EQ(days.size(), 1u);
        return days.empty() ? DayAggregate() : days.front();
    }
    static std::int64_t samples(const DayAggregate& day) {
        std::int64_t sum = 0;
        for (const auto& [hour, bucket] : day.hours) sum += bucket.samples;
        return sum;
    }
};

}  // namespace

TEST_F(HistoryStoreTest, AnEmptyOrMissingFolderHasNoDays) {
    EXPECT_TRUE(load().empty());
    EXPECT_TRUE(HistoryStore::load(folder.root / "none", folder.cache).empty());
}

TEST_F(HistoryStoreTest, OnlyFilesWithTheExactExtensionCountAndComeInTheOrderOfTheirNames) {
    folder.append(tick(1), "2026-03-02");
    folder.append(tick(1), "2026-03-01");
    LogFolder::put(folder.logs / "2026-02-28.JSONL", tick(1));
    LogFolder::put(folder.logs / "2026-02-28.jsonl.gz", tick(1));
    LogFolder::put(folder.logs / ".jsonl", tick(1));
    LogFolder::put(folder.logs / "notes.txt", tick(1));
    const auto days = load();
    ASSERT_EQ(days.size(), 2u);
    EXPECT_EQ(days[0].day, "2026-03-01");
    EXPECT_EQ(days[1].day, "2026-03-02");
}

TEST_F(HistoryStoreTest, AnEmptyFileIsAFreshDayWithoutACache) {
    folder.append("");
    EXPECT_EQ(only().offset, 0u);
    EXPECT_FALSE(std::filesystem::exists(folder.cacheFile()));
}

TEST_F(HistoryStoreTest, AHalfWrittenLineWaitsAndIsCountedOnce) {
    const std::string half = tick(3).substr(0, 30);
    folder.append(tick(1) + half);
    DayAggregate day = only();
    EXPECT_EQ(samples(day), 1);
    EXPECT_EQ(day.offset, tick(1).size());
    EXPECT_EQ(samples(only()), 1);
    folder.append(tick(3).substr(30));
    day = only();
    EXPECT_EQ(samples(day), 2);
    EXPECT_DOUBLE_EQ(day.hours.at(nineOClockHour).swapSum, 4.0);
    EXPECT_EQ(day.offset, tick(1).size() + tick(3).size());
    EXPECT_EQ(samples(only()), 2);
}

TEST_F(HistoryStoreTest, AppendedLinesAddToWhatTheCacheHolds) {
    folder.append(tick(1));
    only();
    // The folded part of the log may change: it is not read again.
    LogFolder::put(folder.logFile(), std::string(tick(1).size() - 1, 'x') + "\n" + tick(2) + tick(5));
    const DayAggregate day = only();
    EXPECT_EQ(samples(day), 3);
    EXPECT_DOUBLE_EQ(day.hours.at(nineOClockHour).swapMax, 5.0);
}

TEST_F(HistoryStoreTest, ALineLongerThanAChunkIsAppliedWhole) {
    std::string line = tick(7);
    line.insert(1, "\"pad\":\"" + std::string((3u << 20) + 17, 'p') + "\",");
    folder.append(tick(1) + line + tick(2));
    const DayAggregate day = only();
    EXPECT_EQ(samples(day), 3);
    EXPECT_DOUBLE_EQ(day.hours.at(nineOClockHour).swapMax, 7.0);
    EXPECT_EQ(day.offset, std::filesystem::file_size(folder.logFile()));
}

TEST_F(HistoryStoreTest, LinesThatStraddleChunksAreNeitherLostNorSplit) {
    std::string log;
    const int lines = 20000;
    for (int n = 0; n < lines; ++n) log += tick(1, "2026-03-01T09:30:15Z");
    ASSERT_GT(log.size(), 1u << 20);
    folder.append(log);
    EXPECT_EQ(samples(only()), lines);
}

TEST_F(HistoryStoreTest, AFileWithoutANewlineConsumesNothingAndIsReadAgain) {
    const std::string line = tick(1).substr(0, tick(1).size() - 1);
    folder.append(line);
    const DayAggregate day = only();
    EXPECT_EQ(day.offset, 0u);
    EXPECT_TRUE(day.hours.empty());
    ASSERT_TRUE(std::filesystem::exists(folder.cacheFile()));
    std::filesystem::remove(folder.cacheFile());
    only();
    EXPECT_TRUE(std::filesystem::exists(folder.cacheFile()));
    folder.append("\n");
    EXPECT_EQ(samples(only()), 1);
}

TEST_F(HistoryStoreTest, BlankLinesAreCountedInTheOffsetAndOtherwiseSkipped) {
    folder.append("\n\n" + tick(1) + "\n");
    const DayAggregate day = only();
    EXPECT_EQ(samples(day), 1);
    EXPECT_EQ(day.offset, tick(1).size() + 3);
}

TEST_F(HistoryStoreTest, ACacheOfAnotherFormatIsReplacedFromTheStart) {
    folder.append(tick(1));
    only();
    std::string cached = LogFolder::get(folder.cacheFile());
    const auto at = cached.find("\"format\":1");
    ASSERT_NE(at, std::string::npos);
    cached.replace(at, 10, "\"format\":2");
    const auto doubled = cached.find("\"samples\":1");
    ASSERT_NE(doubled, std::string::npos);
    cached.replace(doubled, 11, "\"samples\":9");
    LogFolder::put(folder.cacheFile(), cached);
    EXPECT_EQ(samples(only()), 1);
    EXPECT_NE(LogFolder::get(folder.cacheFile()).find("\"format\":1"), std::string::npos);
    EXPECT_NE(LogFolder::get(folder.cacheFile()).find("\"samples\":1"), std::string::npos);
}

TEST_F(HistoryStoreTest, ACacheOfAnotherFormatStaysWhereTheLogIsEmpty) {
    folder.append("");
    LogFolder::put(folder.cacheFile(), R"({"format":2})");
    EXPECT_EQ(only(), [] {
        DayAggregate day;
        day.day = "2026-03-01";
        return day;
    }());
    EXPECT_EQ(LogFolder::get(folder.cacheFile()), R"({"format":2})");
}

TEST_F(HistoryStoreTest, ADamagedCacheIsReplaced) {
    folder.append(tick(1) + tick(2));
    only();
    const std::string whole = LogFolder::get(folder.cacheFile());
    for (const std::string& damaged : {std::string(), whole.substr(0, whole.size() / 2), std::string("[]"), whole + "x",
                                       std::string(whole.size(), '\0'), std::string("{\"format\":1}")}) {
        LogFolder::put(folder.cacheFile(), damaged);
        EXPECT_EQ(samples(only()), 2) << damaged;
        EXPECT_EQ(LogFolder::get(folder.cacheFile()), whole);
    }
}

TEST_F(HistoryStoreTest, ACacheThatIsNoFileCountsAsAbsent) {
    folder.append(tick(1) + tick(2));
    std::filesystem::create_directories(folder.cacheFile());
    EXPECT_EQ(samples(only()), 2);
    EXPECT_EQ(samples(only()), 2);
    std::filesystem::remove(folder.cacheFile());
    ASSERT_EQ(mkfifo(folder.cacheFile().c_str(), 0600), 0);
    EXPECT_EQ(samples(only()), 2);
    EXPECT_TRUE(std::filesystem::is_regular_file(folder.cacheFile()));
}

TEST_F(HistoryStoreTest, ATruncatedLogIsReadAnew) {
    folder.append(tick(1) + tick(2) + tick(3));
    EXPECT_EQ(samples(only()), 3);
    LogFolder::put(folder.logFile(), tick(8));
    const DayAggregate day = only();
    EXPECT_EQ(samples(day), 1);
    EXPECT_DOUBLE_EQ(day.hours.at(nineOClockHour).swapMax, 8.0);
    EXPECT_EQ(day.offset, tick(8).size());
}

TEST_F(HistoryStoreTest, AnEmptiedLogIsAFreshDayAndLeavesTheCacheAsItWas) {
    folder.append(tick(1));
    only();
    const std::string cached = LogFolder::get(folder.cacheFile());
    LogFolder::put(folder.logFile(), "");
    const DayAggregate day = only();
    EXPECT_EQ(day.offset, 0u);
    EXPECT_TRUE(day.hours.empty());
    EXPECT_EQ(LogFolder::get(folder.cacheFile()), cached);
}

TEST_F(HistoryStoreTest, AnUnchangedDayIsNotWrittenAgain) {
    folder.append(tick(1));
    only();
    const auto written = std::filesystem::last_write_time(folder.cacheFile()) - std::chrono::hours(1);
    std::filesystem::last_write_time(folder.cacheFile(), written);
    only();
    EXPECT_EQ(std::filesystem::last_write_time(folder.cacheFile()), written);
}

TEST_F(HistoryStoreTest, ACacheThatCannotBeWrittenCostsOnlyTheWork) {
    folder.append(tick(1));
    LogFolder::put(folder.cache, "a file where the folder should be");
    EXPECT_EQ(samples(only()), 1);
    EXPECT_EQ(samples(only()), 1);
}

TEST_F(HistoryStoreTest, NoTemporaryFileStaysBehind) {
    folder.append(tick(1));
    only();
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.cache)) ++count;
    EXPECT_EQ(count, 1u);
}

TEST_F(HistoryStoreTest, WhatAKilledWriteLeftIsSweptAfterAnHour) {
    const auto stale = folder.cache / ".2026-03-01.json.AbCdEf";
    const auto young = folder.cache / ".2026-03-01.json.GhIjKl";
    const auto other = folder.cache / "notes";
    for (const auto& file : {stale, young, other}) LogFolder::put(file, "half");
    const auto twoHoursAgo = std::filesystem::file_time_type::clock::now() - std::chrono::hours(2);
    std::filesystem::last_write_time(stale, twoHoursAgo);
    std::filesystem::last_write_time(other, twoHoursAgo);
    folder.append(tick(1));
    only();
    EXPECT_FALSE(std::filesystem::exists(stale));
    EXPECT_TRUE(std::filesystem::exists(young));
    EXPECT_TRUE(std::filesystem::exists(other));
}

TEST_F(HistoryStoreTest, TheMemoGoesBeforeTheCacheWithoutATestOfItsFormat) {
    folder.append(tick(1));
    DayAggregate day = only();
    day.format = 7;
    day.titles["a"] = "from the memo";
    const DayAggregate again = only({{"2026-03-01", day}});
    EXPECT_EQ(again, day);
    folder.append(tick(2));
    const DayAggregate grown = only({{"2026-03-01", day}});
    EXPECT_EQ(samples(grown), 2);
    EXPECT_EQ(grown.titles.at("a"), "from the memo");
}

TEST_F(HistoryStoreTest, ADayWhoseLogIsGoneIsNoLongerReturnedAndItsCacheStays) {
    folder.append(tick(1));
    const DayAggregate day = only();
    std::filesystem::remove(folder.logFile());
    EXPECT_TRUE(load({{"2026-03-01", day}}).empty());
    EXPECT_TRUE(std::filesystem::exists(folder.cacheFile()));
}

TEST_F(HistoryStoreTest, AnUnreadableFileChangesNothing) {
    std::filesystem::create_directories(folder.logs / "2026-03-01.jsonl");
    EXPECT_EQ(only().offset, 0u);
    DayAggregate day;
    day.offset = 5;
    HistoryStore::ingest(day, folder.root / "none.jsonl");
    EXPECT_EQ(day.offset, 5u);
}

TEST_F(HistoryStoreTest, TheCacheHoldsDatesAsSecondsSince2001) {
    folder.append(tick(1) + R"({"kind":"kill","group":"node","t":"2026-03-01T09:30:15Z"})"
                            "\n");
    only();
    const std::string cached = LogFolder::get(folder.cacheFile());
    // 2001-01-01T00:00:00Z is 978307200 seconds after 1970.
    EXPECT_NE(cached.find("\"start\":794048400"), std::string::npos) << cached;
    EXPECT_NE(cached.find("\"at\":794050215"), std::string::npos) << cached;
    EXPECT_EQ(nineOClock - 978307200, 794048400);
}

TEST_F(HistoryStoreTest, ACacheWrittenByAnotherEncoderIsTaken) {
    folder.append(tick(1));
    const auto size = std::to_string(tick(1).size());
    LogFolder::put(folder.cacheFile(),
                   R"({"titles":{"x":"y"},"events":[{"survivors":1,"mb":2,"ids":["a"],"what":"w","at":0.5}],
        "hours":{"492321":{"causes":["b","a"],"apps":{"z":1,"c":2},"reclaimMB":3,"loadMax":1.5,"memFreeMin":9,
        "swapMax":2,"swapSum":2.0,"samples":4.0,"start":794048400}},"offset":)" +
                       size + R"(,"day":"2026-03-01","format":1,"extra":null})");
    const DayAggregate day = only();
    EXPECT_EQ(day.titles, (Titles{{"x", "y"}}));
    ASSERT_EQ(day.events.size(), 1u);
    EXPECT_DOUBLE_EQ(day.events[0].at, 978307200.5);
    const HourBucket& bucket = day.hours.at(nineOClockHour);
    EXPECT_DOUBLE_EQ(bucket.start, nineOClock);
    EXPECT_EQ(bucket.samples, 4);
    EXPECT_EQ(bucket.apps, (HourBucket::Apps{{"c", 2}, {"z", 1}}));
    EXPECT_EQ(bucket.causes.size(), 2u);
}

}  // namespace ravik
