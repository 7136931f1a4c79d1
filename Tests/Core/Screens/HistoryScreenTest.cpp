#include "Core/Screens/HistoryScreen.h"

#include <cstdlib>
#include <ctime>

#include <gtest/gtest.h>

namespace ravik {

namespace {

using namespace HistoryScreen;

constexpr Time ten = 1772359200;  // 2026-03-01T10:00:00Z
constexpr double hour = 3600;

HourBucket bucketOf(Time start, double average, double most = 0) {
    HourBucket bucket;
    bucket.start = start;
    bucket.samples = 4;
    bucket.swapSum = 4 * average;
    bucket.swapMax = most;
    return bucket;
}

HistoryEvent eventAt(Time at, const std::string& what = "Ended x", std::int64_t mb = 0, std::int64_t survivors = 0) {
    HistoryEvent event;
    event.at = at;
    event.what = what;
    event.mb = mb;
    event.survivors = survivors;
    return event;
}

struct HistoryScreenTest : testing::Test {
    HistoryData data;

    HistoryScreenTest() { zone("UTC"); }
    ~HistoryScreenTest() override { zone(nullptr); }
    static void zone(const char* name) {
        if (name) {
            ::setenv("TZ", name, 1);
        } else {
            ::unsetenv("TZ");
        }
        ::tzset();
    }
    TimeRange week() const { return *range(data, Span::week, {}); }
    std::vector<const HourBucket*> all() const { return hours(data, TimeRange{0, 4e9}); }
};

}  // namespace

TEST_F(HistoryScreenTest, WithoutABucketOrANowThereIsNoRange) {
    EXPECT_FALSE(range(data, Span::day, {}));
    EXPECT_FALSE(range(data, Span::week, {}));
    EXPECT_EQ(range(data, Span::day, ten), (TimeRange{ten - 86400, ten}));
    EXPECT_EQ(range(data, Span::week, ten), (TimeRange{ten - 691200, ten}));
    EXPECT_TRUE(hours(data, {}).empty());
}

TEST_F(HistoryScreenTest, TheRangeEndsAnHourAfterTheLastBucketStarts) {
    data.hours = {bucketOf(ten, 1), bucketOf(ten + hour, 1)};
    EXPECT_EQ(range(data, Span::day, {}), (TimeRange{ten + 2 * hour - 86400, ten + 2 * hour}));
}

TEST_F(HistoryScreenTest, AWeekWithLittleDataStartsAtTheFirstBucket) {
    data.hours = {bucketOf(ten, 1), bucketOf(ten + 47 * hour, 1)};
    EXPECT_EQ(week(), (TimeRange{ten, ten + 48 * hour}));
    data.hours.insert(data.hours.begin(), bucketOf(ten - 1000 * hour, 1));
    EXPECT_EQ(week(), (TimeRange{ten + 48 * hour - 691200, ten + 48 * hour}));
    EXPECT_EQ(range(data, Span::week, ten - 2000 * hour), (TimeRange{ten - 2000 * hour, ten - 2000 * hour}));
}

TEST_F(HistoryScreenTest, BucketsAndEventsAtTheEndsOfTheRangeAreShown) {
    data.hours = {bucketOf(ten, 1), bucketOf(ten + hour, 1), bucketOf(ten + 2 * hour, 1)};
    data.events = {eventAt(ten - 1), eventAt(ten), eventAt(ten + hour), eventAt(ten + hour + 1)};
    const TimeRange shown{ten, ten + hour};
    EXPECT_EQ(hours(data, shown).size(), 2u);
    EXPECT_EQ(events(data, shown).size(), 2u);
}

TEST_F(HistoryScreenTest, TheHeadlineNamesTheBiggestDrop) {
    data.hours = {bucketOf(ten, 9.04, 12), bucketOf(ten + hour, 4.26, 5)};
    data.events = {eventAt(ten + 1800, "Free · 2 ended")};
    EXPECT_EQ(headline(data, week()),
              (Headline{"9.0 → 4.3", "GB", "spilled to disk", "It fell within an hour of Free · 2 ended, 1 Mar."}));
}

TEST_F(HistoryScreenTest, TheDayOfTheHeadlineIsLocal) {
    data.hours = {bucketOf(ten, 9), bucketOf(ten + hour, 4)};
    data.events = {eventAt(ten + 1800)};
    zone("Pacific/Kiritimati");
    EXPECT_EQ(headline(data, week()).sentence, "It fell within an hour of Ended x, 2 Mar.");
}

TEST_F(HistoryScreenTest, WithoutADropTheHeadlineIsTheWorstHour) {
    data.hours = {bucketOf(ten, 1, 3.25), bucketOf(ten + hour, 1, 7.77)};
    EXPECT_EQ(headline(data, week()), (Headline{"7.8", "GB", "spilled to disk at worst", "No fix in this span yet."}));
    EXPECT_EQ(headline(data, {}).value, "0.0");
}

TEST_F(HistoryScreenTest, OneSpikeDoesNotFlattenTheWeek) {
    for (int n = 0; n < 192; ++n) data.hours.push_back(bucketOf(ten + n * hour, n == 70 ? 30 : 2));
    EXPECT_DOUBLE_EQ(cap(all()), 8);
    const auto line = points(all());
    EXPECT_EQ(line[70].peak, "peak 30.0 GB");
    EXPECT_DOUBLE_EQ(line[70].drawn, 8);
    EXPECT_EQ(line[69].peak, "");
    EXPECT_DOUBLE_EQ(line[69].drawn, 2);
}

TEST_F(HistoryScreenTest, TheCapIsAThirdAboveAllButTheHighest) {
    EXPECT_DOUBLE_EQ(cap({}), 21);
    data.hours = {bucketOf(ten, 10)};
    EXPECT_DOUBLE_EQ(cap(all()), 13);
    data.hours = {bucketOf(ten, 10.1), bucketOf(ten + hour, 1)};
    EXPECT_DOUBLE_EQ(cap(all()), 14);
    data.hours.clear();
    for (int n = 0; n < 50; ++n) data.hours.push_back(bucketOf(ten + n * hour, n));
    EXPECT_DOUBLE_EQ(cap(all()), 64) << "element 49 of 50";
    data.hours.push_back(bucketOf(ten + 50 * hour, 50));
    EXPECT_DOUBLE_EQ(cap(all()), 64) << "element 49 of 51";
}

TEST_F(HistoryScreenTest, TheAxisGoesInFoursAndInEightsWhereItIsHigh) {
    EXPECT_EQ(axisStep(24), 4);
    EXPECT_EQ(axisStep(25), 8);
    EXPECT_DOUBLE_EQ(axisTop(25), 27);
}

TEST_F(HistoryScreenTest, TheSummaryTellsTheChart) {
    data.hours = {bucketOf(ten, 1, 9.96), bucketOf(ten + hour, 2, 9.96), bucketOf(ten + 2 * hour, 2.5, 3)};
    EXPECT_EQ(swapSummary(all(), 1), "Swap used, hourly: now 2.5 GB, peak 10.0 GB at 2026-03-01 10:00Z. 1 fix marked.");
    EXPECT_EQ(swapSummary({}, 0), "Swap used, hourly: now 0.0 GB, peak 0.0 GB at —. 0 fixes marked.");
}

TEST_F(HistoryScreenTest, TheTopAppsAreThreeByTheirBestHourThenByName) {
    data.hours = {bucketOf(ten, 1), bucketOf(ten + hour, 1)};
    data.hours[0].apps = {{"Chrome", 900}, {"Slack", 300}, {"Zed", 500}};
    data.hours[1].apps = {{"Chrome", 100}, {"Code", 1490}, {"Arc", 500}};
    EXPECT_EQ(topApps(all()), (std::vector<std::string>{"Code", "Chrome", "Arc"}));
    EXPECT_EQ(appTitle(all(), "Code"), "Code: up to 1.5 GB held");
    EXPECT_EQ(appTop(all(), "none"), 0);
}

TEST_F(HistoryScreenTest, TheHourCardShowsTheHourUnderThePointer) {
    EXPECT_DOUBLE_EQ(hourAt(ten + 3599), ten);
    EXPECT_DOUBLE_EQ(hourAt(ten + 3600), ten + 3600);
    HourBucket bucket = bucketOf(ten, 1.25);
    bucket.apps = {{"a", 100}, {"b", 2345}, {"c", 300}, {"d", 50}};
    using Lines = std::vector<std::string>;
    EXPECT_EQ(hourCard(bucket), (Lines{"Sun 1 Mar · 10:00", "1.2 GB on disk", "b 2.3 GB", "c 0.3 GB", "a 0.1 GB"}));
    zone("Asia/Kolkata");
    EXPECT_EQ(hourCard(bucket)[0], "Sun 1 Mar · 15:00");
    zone("America/New_York");
    bucket.start = 1772953200;  // 2026-03-08T07:00:00Z: the clocks have just skipped from 2 to 3
    EXPECT_EQ(hourCard(bucket)[0], "Sun 8 Mar · 03:00");
}

TEST_F(HistoryScreenTest, EventsAreListedNewestFirst) {
    data.events = {eventAt(ten, "Ended a", 1234, 0), eventAt(ten + 60, "Ended b", 0, 2)};
    EXPECT_EQ(eventRows(events(data, TimeRange{ten, ten + hour})),
              (std::vector<EventRow>{{"2026-03-01 10:01Z", "Ended b", "", "2 still running"},
                                     {"2026-03-01 10:00Z", "Ended a", "1,234\u00a0MB", "all ended"}}));
}

namespace {

HistoryData::Lane laneOf(const std::string& cause, Time start, Time end, const std::string& label = "node") {
    HistoryData::Lane lane;
    lane.id = cause + "@1";
    lane.cause = cause;
    lane.label = label;
    lane.start = start;
    lane.end = end;
    return lane;
}

}  // namespace

TEST_F(HistoryScreenTest, OnlyTheFourteenLongestLanesAreShownInTheirOrder) {
    std::vector<HistoryData::Lane> lanes;
    for (int n = 0; n < 20; ++n) {
        lanes.push_back(laneOf("orphan:" + std::to_string(n), ten + n, ten + n + (n % 2 ? 2 : 1) * hour));
    }
    const auto rows = laneRows(lanes, Host());
    ASSERT_EQ(rows.size(), 14u);
    std::vector<std::string> causes;
    for (const auto& row : rows) causes.push_back(row.lane.cause.substr(7));
    EXPECT_EQ(causes,
              (std::vector<std::string>{"0", "1", "2", "3", "4", "5", "6", "7", "9", "11", "13", "15", "17", "19"}));
}

TEST_F(HistoryScreenTest, DatabasesAreLeftAloneOnPurpose) {
    const auto rows =
        laneRows({laneOf("db:7", ten, ten + 50 * hour, "x"), laneOf("orphan:8", ten, ten + 3 * hour, "postgres"),
                  laneOf("automation:9", ten, ten + 3 * hour, "Hidden automation Chrome")},
                 Host());
    EXPECT_TRUE(rows[0].isLeftAlone);
    EXPECT_EQ(rows[0].icon, LaneIcon::cylinder);
    EXPECT_EQ(rows[0].text, "left alone 2 days");
    EXPECT_TRUE(rows[1].isLeftAlone);
    EXPECT_EQ(rows[1].icon, LaneIcon::codeBracket);
    EXPECT_FALSE(rows[2].isLeftAlone);
    EXPECT_EQ(rows[2].icon, LaneIcon::globe);
    EXPECT_EQ(rows[2].text, "3 h");
}

TEST_F(HistoryScreenTest, ALaneTellsWhereItBeganAndWhatEndedIt) {
    auto ended = laneOf("orphan:1", ten, ten + 3 * hour, "node");
    ended.endedBy = eventAt(ten + 3 * hour);
    const auto rows = laneRows({ended, laneOf("orphan:2", ten, ten + 1.5 * hour, "vite")}, Host());
    using Details = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(rows[0].details,
              (Details{{"Leftover", "node"}, {"From", "2026-03-01 10:00Z"}, {"Ended", "2026-03-01 13:00Z"}}));
    EXPECT_EQ(rows[1].details, (Details{{"Leftover", "vite"}, {"From", "2026-03-01 10:00Z"}}));
    EXPECT_EQ(laneSentence(rows), "2 leftovers, 1 ended by Ravik. node lived 3 h, vite lived 1 h");
    EXPECT_EQ(laneSentence({}), "0 leftovers, 0 ended by Ravik. ");
}

TEST_F(HistoryScreenTest, AFixBeforeTheSpanLeavesNothingOfItsLane) {
    EXPECT_EQ(laneRows({laneOf("orphan:1", ten, ten - hour)}, Host())[0].text, "0 min");
}

}  // namespace ravik
