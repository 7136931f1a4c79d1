#include "Core/Record/WeekProof.h"

#include <cstdlib>
#include <ctime>

#include <gtest/gtest.h>

namespace ravik {

namespace {

constexpr Time now = 1772884800;  // 2026-03-07T12:00:00Z, a week after 2026-02-28T12:00:00Z

struct WeekProofTest : testing::Test {
    WeekProofTest() { zone("UTC"); }
    ~WeekProofTest() override { zone(nullptr); }
    static void zone(const char* name) {
        if (name) {
            ::setenv("TZ", name, 1);
        } else {
            ::unsetenv("TZ");
        }
        ::tzset();
    }

    std::vector<DayAggregate> days;

    DayAggregate& on(const std::string& day) {
        DayAggregate& made = days.emplace_back();
        made.day = day;
        return made;
    }
    static void fix(DayAggregate& day, Time at, std::int64_t mb) {
        HistoryEvent& event = day.events.emplace_back();
        event.at = at;
        event.mb = mb;
    }
    std::optional<std::string> line() const { return WeekProof::line(days, now); }
};

}  // namespace

TEST_F(WeekProofTest, SaysNothingOfNothing) {
    EXPECT_FALSE(line());
    on("2026-03-05").titles["disk"] = "The disk is almost full";
    EXPECT_FALSE(line());
}

TEST_F(WeekProofTest, OneFixStandsAlone) {
    fix(on("2026-03-05"), now - 86400, 0);
    EXPECT_EQ(line(), "This week: 1 fix");
}

TEST_F(WeekProofTest, FixesAndWhatTheyGaveBack) {
    DayAggregate& day = on("2026-03-05");
    fix(day, now - 86400, 1000);
    fix(day, now - 86400, 1000);
    fix(day, now - 86400, 48);
    EXPECT_EQ(line(), "This week: 3 fixes · 2.0 GB given back");
}

TEST_F(WeekProofTest, WhatWasGivenBackStaysAtTheLargestSize) {
    fix(on("2026-03-05"), now - 86400, std::int64_t{1} << 53);
    EXPECT_EQ(line(), "This week: 1 fix · 17592186044.4 GB given back");
}

TEST_F(WeekProofTest, RunawaysAreCountedInEachDay) {
    on("2026-03-04").titles = {{"holder:Cursor", "Cursor grew to 4.1 GB in 7 min"},
                               {"holder:Slack", "Slack holds 3.0 GB"},
                               {"vm:Docker", "Docker grew to 9 GB"}};
    EXPECT_EQ(line(), "This week: 1 runaway named");
    on("2026-03-05").titles = {{"holder:Cursor", "Cursor grew to 5.0 GB in 3 min"}};
    fix(days[0], now, 1);
    EXPECT_EQ(line(), "This week: 2 runaways named · 1 fix · 1 MB given back");
}

TEST_F(WeekProofTest, TheWeekBeginsAtItsSecondForFixesAndAtItsDayForTitles) {
    DayAggregate& day = on("2026-02-28");
    fix(day, now - 604801, 5);
    EXPECT_FALSE(line());
    day.titles["holder:x"] = "x grew to 1 GB";
    EXPECT_EQ(line(), "This week: 1 runaway named");
    fix(day, now - 604800, 5);
    EXPECT_EQ(line(), "This week: 1 runaway named · 1 fix · 5 MB given back");
    day.day = "2026-02-27";
    EXPECT_FALSE(line());
}

TEST_F(WeekProofTest, TheDayIsTheOneOfTheLocalZone) {
    fix(on("2026-02-28"), now, 5);
    // Fourteen hours east it is already the 1st of March a week ago.
    zone("Pacific/Kiritimati");
    EXPECT_FALSE(line());
    zone("Asia/Kolkata");
    EXPECT_EQ(line(), "This week: 1 fix · 5 MB given back");
}

TEST_F(WeekProofTest, ADayFileOfAZoneWithAChangeOfClocksIsKept) {
    // Berlin puts its clocks forward on the 29th of March, so this week has 167 hours.
    zone("Europe/Berlin");
    fix(on("2026-03-23"), 1774310400, 7);  // 2026-03-24T00:00:00Z
    const Time sundayNight = 1774911600;   // 2026-03-31T01:00 in Berlin; a week ago it was 2026-03-24T00:00
    EXPECT_FALSE(WeekProof::line(days, sundayNight));
    EXPECT_EQ(WeekProof::line(days, sundayNight - 1), "This week: 1 fix · 7 MB given back");
}

}  // namespace ravik
