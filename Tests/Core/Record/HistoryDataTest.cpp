#include "Core/Record/HistoryData.h"

#include <gtest/gtest.h>

namespace ravik {

namespace {

constexpr std::int64_t tenHour = 492322;  // 2026-03-01T10:00:00Z
constexpr Time ten = 1772359200;
constexpr TimeRange always{0, 4e9};

Time clock(int hour, int minute = 0) { return ten + (hour - 10) * 3600 + minute * 60; }

struct HistoryDataTest : testing::Test {
    DayAggregate day;

    HourBucket& bucket(int hour) {
        HourBucket& made = day.hours[tenHour + hour - 10];
        made.start = clock(hour);
        return made;
    }
    void seen(const std::string& cause, std::initializer_list<int> hours) {
        for (const int hour : hours) bucket(hour).causes.insert(cause);
    }
    void swap(int hour, double average) {
        bucket(hour).samples = 2;
        bucket(hour).swapSum = 2 * average;
    }
    void fix(Time at, std::vector<std::string> ids = {}, const std::string& what = "Ended x") {
        HistoryEvent event;
        event.at = at;
        event.what = what;
        event.ids = std::move(ids);
        day.events.push_back(event);
    }
    HistoryData data() const { return HistoryData({day}); }
    std::vector<HistoryData::Lane> lanes(const TimeRange& range = always) const { return data().lanes(range); }
};

}  // namespace

TEST_F(HistoryDataTest, NothingComesOfNothing) {
    const HistoryData none{std::vector<DayAggregate>()};
    EXPECT_TRUE(none.hours.empty());
    EXPECT_TRUE(none.events.empty());
    EXPECT_TRUE(none.lanes(always).empty());
    EXPECT_FALSE(none.biggestDrop(always));
}

TEST_F(HistoryDataTest, AnHourThatTwoFilesShareIsJoined) {
    HourBucket& first = bucket(10);
    first = {.start = ten,
             .samples = 2,
             .swapSum = 3,
             .swapMax = 2,
             .memFreeMin = 40,
             .loadMax = 5,
             .reclaimMB = 10,
             .apps = {{"a", 1}, {"b", 9}},
             .causes = {"x"}};
    DayAggregate later;
    later.hours[tenHour] = {.start = ten,
                            .samples = 1,
                            .swapSum = 4,
                            .swapMax = 4,
                            .memFreeMin = 30,
                            .loadMax = 1,
                            .reclaimMB = 20,
                            .apps = {{"a", 5}, {"b", 2}, {"c", 3}},
                            .causes = {"y"}};
    later.hours[tenHour - 1].start = ten - 3600;
    const HistoryData joined({day, later});
    ASSERT_EQ(joined.hours.size(), 2u);
    EXPECT_EQ(joined.hours[0].start, ten - 3600);
    EXPECT_EQ(joined.hours[1], (HourBucket{.start = ten,
                                           .samples = 3,
                                           .swapSum = 7,
                                           .swapMax = 4,
                                           .memFreeMin = 30,
                                           .loadMax = 5,
                                           .reclaimMB = 20,
                                           .apps = {{"a", 5}, {"b", 9}, {"c", 3}},
                                           .causes = {"x", "y"}}));
}

TEST_F(HistoryDataTest, EventsAreSortedAndEqualOnesKeepTheirOrder) {
    fix(clock(12), {}, "late");
    fix(clock(11), {}, "first");
    DayAggregate other;
    other.events = day.events;
    other.events[1].what = "second";
    other.events.pop_back();
    other.events[0].at = clock(11);
    other.events[0].what = "second";
    const HistoryData joined({day, other});
    ASSERT_EQ(joined.events.size(), 3u);
    EXPECT_EQ(joined.events[0].what, "first");
    EXPECT_EQ(joined.events[1].what, "second");
    EXPECT_EQ(joined.events[2].what, "late");
}

TEST_F(HistoryDataTest, OfTwoTitlesTheLaterFileWins) {
    day.titles = {{"a", "old"}, {"b", "only"}};
    DayAggregate later;
    later.titles = {{"a", "new"}};
    EXPECT_EQ(HistoryData({day, later}).titles, (Titles{{"a", "new"}, {"b", "only"}}));
}

TEST_F(HistoryDataTest, ALaneGoesOnOverAGapOfExactlyTwoHours) {
    seen("orphan:1", {10, 12});
    ASSERT_EQ(lanes().size(), 1u);
    EXPECT_EQ(lanes()[0].start, clock(10));
    EXPECT_EQ(lanes()[0].end, clock(13));
    EXPECT_FALSE(lanes()[0].endedBy);
}

TEST_F(HistoryDataTest, ALongerGapMakesTwoLanesWithDifferentIds) {
    seen("orphan:1", {10, 13});
    ASSERT_EQ(lanes().size(), 2u);
    EXPECT_EQ(lanes()[0].id, "orphan:1@1772359200");
    EXPECT_EQ(lanes()[0].end, clock(11));
    EXPECT_EQ(lanes()[1].id, "orphan:1@1772370000");
    EXPECT_EQ(lanes()[1].end, clock(14));
}

TEST_F(HistoryDataTest, OnlyLongLivedKindsHaveLanes) {
    for (const char* cause : {"orphan:1", "automation:2", "db:3", "hog:4", "holder:Chrome", "leftovers", "disk"}) {
        seen(cause, {10});
    }
    ASSERT_EQ(lanes().size(), 3u);
    EXPECT_EQ(lanes()[0].cause, "orphan:1");
    EXPECT_EQ(lanes()[1].cause, "automation:2");
    EXPECT_EQ(lanes()[2].cause, "db:3");
}

TEST_F(HistoryDataTest, LanesStandByStartThenLabelThenId) {
    seen("orphan:9", {10});
    seen("db:8", {10});
    seen("orphan:7", {10});
    seen("orphan:6", {9});
    day.titles = {{"orphan:9", "b holds x"}, {"db:8", "a"}, {"orphan:7", "b has run 3 h"}};
    const auto all = lanes();
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(all[0].cause, "orphan:6");
    EXPECT_EQ(all[1].cause, "db:8");
    EXPECT_EQ(all[2].cause, "orphan:7");
    EXPECT_EQ(all[3].cause, "orphan:9");
    EXPECT_EQ(all[3].label, "b");
}

TEST_F(HistoryDataTest, ALaneIsClippedToTheSpanAndKeepsItsId) {
    seen("orphan:1", {8, 9, 10, 11});
    const auto clipped = lanes({clock(9, 30), clock(10, 30)});
    ASSERT_EQ(clipped.size(), 1u);
    EXPECT_EQ(clipped[0].start, clock(9, 30));
    EXPECT_EQ(clipped[0].end, clock(10, 30));
    EXPECT_EQ(clipped[0].id, "orphan:1@1772352000");
}

TEST_F(HistoryDataTest, ALaneThatOnlyTouchesTheSpanIsLeftOut) {
    seen("orphan:1", {8});
    EXPECT_TRUE(lanes({clock(9), clock(12)}).empty());
    EXPECT_EQ(lanes({clock(8, 59), clock(12)}).size(), 1u);
    EXPECT_TRUE(lanes({clock(5), clock(8)}).empty());
}

TEST_F(HistoryDataTest, AFixEndsItsLane) {
    seen("orphan:1", {9, 10});
    fix(clock(10, 20), {"orphan:1"});
    EXPECT_EQ(lanes()[0].end, clock(10, 20));
    ASSERT_TRUE(lanes()[0].endedBy);
    day.events[0].at = clock(11, 30);
    EXPECT_EQ(lanes()[0].end, clock(11, 30));
    EXPECT_TRUE(lanes()[0].endedBy);
    day.events[0].at = clock(12);
    EXPECT_TRUE(lanes()[0].endedBy);
    day.events[0].at = clock(12, 1);
    EXPECT_EQ(lanes()[0].end, clock(11));
    EXPECT_FALSE(lanes()[0].endedBy);
}

TEST_F(HistoryDataTest, OnlyTheFirstFixOfTheCauseSinceItsStartCounts) {
    seen("orphan:1", {10});
    fix(clock(9, 59), {"orphan:1"}, "before");
    fix(clock(10, 10), {"orphan:2"}, "another");
    fix(clock(10, 30), {"orphan:2", "orphan:1"}, "it");
    fix(clock(10, 40), {"orphan:1"}, "later");
    ASSERT_TRUE(lanes()[0].endedBy);
    EXPECT_EQ(lanes()[0].endedBy->what, "it");
}

TEST_F(HistoryDataTest, TheBiggestDropIsFoundWithinAnHour) {
    swap(10, 9);
    swap(11, 4);
    swap(12, 1);
    fix(clock(10, 30), {}, "it");
    const auto drop = data().biggestDrop(always);
    ASSERT_TRUE(drop);
    EXPECT_DOUBLE_EQ(drop->before, 9);
    EXPECT_DOUBLE_EQ(drop->after, 4);
    EXPECT_EQ(drop->event.what, "it");
}

TEST_F(HistoryDataTest, AnEventOnTheHourLooksAtTheNextOne) {
    swap(10, 9);
    swap(11, 4);
    swap(12, 1);
    fix(clock(11));
    const auto drop = data().biggestDrop(always);
    ASSERT_TRUE(drop);
    EXPECT_DOUBLE_EQ(drop->before, 4);
    EXPECT_DOUBLE_EQ(drop->after, 1);
}

TEST_F(HistoryDataTest, ADropOfHalfAGigabyteIsNotEnough) {
    swap(10, 2);
    swap(11, 1.5);
    fix(clock(10, 30));
    EXPECT_FALSE(data().biggestDrop(always));
    swap(11, 1.25);
    EXPECT_TRUE(data().biggestDrop(always));
}

TEST_F(HistoryDataTest, OfEqualDropsTheEarliestIsTaken) {
    swap(10, 4);
    swap(11, 2);
    swap(14, 6);
    swap(15, 4);
    fix(clock(10, 30), {}, "early");
    fix(clock(14, 30), {}, "late");
    EXPECT_EQ(data().biggestDrop(always)->event.what, "early");
    swap(15, 3.5);
    EXPECT_EQ(data().biggestDrop(always)->event.what, "late");
}

TEST_F(HistoryDataTest, AnEventWithoutABucketBeforeOrAfterIsNoCandidate) {
    swap(10, 4);
    fix(clock(9, 59));
    fix(clock(10, 30));
    EXPECT_FALSE(data().biggestDrop(always));
}

TEST_F(HistoryDataTest, EventsOutsideTheRangeDoNotCountButItsEndsDo) {
    swap(10, 9);
    swap(11, 4);
    fix(clock(10, 30));
    EXPECT_FALSE(data().biggestDrop({clock(10, 31), clock(12)}));
    EXPECT_TRUE(data().biggestDrop({clock(10, 30), clock(10, 30)}));
}

TEST_F(HistoryDataTest, TheAverageOfAnHourWithoutATickIsZero) {
    EXPECT_DOUBLE_EQ(HourBucket().swapAverage(), 0);
    swap(10, 3);
    bucket(11).causes.insert("disk");
    fix(clock(10, 30));
    EXPECT_DOUBLE_EQ(data().biggestDrop(always)->after, 0);
}

}  // namespace ravik
