#include <random>

#include <gtest/gtest.h>

#include "Core/Record/HistoryStore.h"
#include "Tests/Core/Record/LogFolder.h"

namespace ravik {

namespace {

constexpr std::int64_t nineOClockHour = 492321;  // 2026-03-01T09:00:00Z

/// One line with the three keys that every line has, `second` seconds after 09:30.
std::string line(const std::string& kind, const std::string& fields, int second = 0) {
    const auto two = [](int number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    return "{\"kind\":\"" + kind + "\"," + (fields.empty() ? "" : fields + ",") +
           "\"session\":\"0A1B2C3D\",\"t\":\"2026-03-01T09:" + two(30 + second / 60) + ":" + two(second % 60) + "Z\"}";
}

struct LineFold : testing::Test {
    DayAggregate day;
    void apply(const std::string& kind, const std::string& fields, int second = 0) {
        HistoryStore::apply(line(kind, fields, second), day);
    }
    HourBucket& bucket() { return day.hours.at(nineOClockHour); }
    std::string what() {
        EXPECT_EQ(day.events.size(), 1u);
        return day.events.empty() ? "" : day.events[0].what;
    }
};

}  // namespace

TEST_F(LineFold, TicksOfAnHourAddUp) {
    apply("tick", R"("swapGB":1.0,"memFreePct":40,"load":3.5)");
    apply("tick", R"("swapGB":3.0,"memFreePct":25,"load":2)", 5);
    ASSERT_EQ(day.hours.size(), 1u);
    EXPECT_EQ(bucket().samples, 2);
    EXPECT_DOUBLE_EQ(bucket().swapSum, 4.0);
    EXPECT_DOUBLE_EQ(bucket().swapMax, 3.0);
    EXPECT_EQ(bucket().memFreeMin, 25);
    EXPECT_DOUBLE_EQ(bucket().loadMax, 3.5);
    EXPECT_DOUBLE_EQ(bucket().start, 1772355600);
}

TEST_F(LineFold, AFieldOfAnotherTypeHasItsDefault) {
    apply("tick", R"("swapGB":"9","memFreePct":"1","load":true,"top":5)");
    EXPECT_EQ(bucket().samples, 1);
    EXPECT_DOUBLE_EQ(bucket().swapSum, 0);
    EXPECT_EQ(bucket().memFreeMin, 100);
    EXPECT_DOUBLE_EQ(bucket().loadMax, 0);
    EXPECT_TRUE(bucket().apps.empty());
}

TEST_F(LineFold, WholeNumbersAndRealOnesStandForEachOtherWhereTheyAreExact) {
    apply("tick", R"("swapGB":2,"memFreePct":7.0)");
    EXPECT_DOUBLE_EQ(bucket().swapSum, 2);
    EXPECT_EQ(bucket().memFreeMin, 7);
    apply("tick", R"("memFreePct":3.5)");
    apply("tick", R"("memFreePct":true)");
    apply("tick", R"("memFreePct":-1e300)");
    EXPECT_EQ(bucket().memFreeMin, 7);
}

TEST_F(LineFold, ATickWithoutFreeMemoryCannotLowerTheLeast) {
    apply("tick", R"("memFreePct":55)");
    apply("tick", "");
    EXPECT_EQ(bucket().memFreeMin, 55);
}

TEST_F(LineFold, AppsKeepTheMostTheyWereSeenHolding) {
    apply("tick", R"("top":[["Chrome",900],["Code",400]])");
    apply("tick", R"("top":[["Code",1400],["Chrome",300],["Slack",20]])");
    apply("tick", R"("top":[["Code",1000.0],["Slack",10.5],["neg",-5],["a",1,2],["b"],[3,4],["c","5"],[]])");
    EXPECT_EQ(bucket().apps, (HourBucket::Apps{{"Chrome", 900}, {"Code", 1400}, {"Slack", 20}, {"neg", 0}}));
}

TEST_F(LineFold, AnArrayThatHoldsAnythingButArraysCountsAsEmpty) {
    apply("tick", R"("top":[["Chrome",900],7])");
    EXPECT_TRUE(bucket().apps.empty());
    EXPECT_EQ(bucket().samples, 1);
}

TEST_F(LineFold, DiagnosesUniteTheirCauses) {
    apply("diagnosis", R"("findings":["disk","orphan:1"],"reclaimableMB":300)");
    apply("diagnosis", R"("findings":["orphan:1","vm:Docker"],"reclaimableMB":200)");
    apply("diagnosis", R"("findings":["hog:4",5])");
    EXPECT_EQ(bucket().samples, 0);
    EXPECT_EQ(bucket().reclaimMB, 300);
    EXPECT_EQ(bucket().causes, (std::set<std::string, std::less<>>{"disk", "orphan:1", "vm:Docker"}));
}

TEST_F(LineFold, FindingsGiveTitlesAndTheLastOneHolds) {
    apply("finding", R"("id":"orphan:1","title":"old")");
    apply("finding", R"("id":"orphan:1","title":"caf\u00e9 \"x\"")");
    apply("finding", R"("id":"orphan:2")");
    apply("finding", R"("title":"nobody's")");
    EXPECT_EQ(day.titles, (Titles{{"orphan:1", "café \"x\""}}));
    EXPECT_TRUE(day.hours.empty());
}

TEST_F(LineFold, ARemedyWithoutAKnownTitleIsNamedByItsId) {
    apply("remedy", R"("finding":"orphan:123","gainMB":70,"survivors":[4,5])");
    EXPECT_EQ(what(), "Ended 123");
    EXPECT_EQ(day.events[0].ids, std::vector<std::string>{"orphan:123"});
    EXPECT_EQ(day.events[0].mb, 70);
    EXPECT_EQ(day.events[0].survivors, 2);
    EXPECT_DOUBLE_EQ(day.events[0].at, 1772357400);
}

TEST_F(LineFold, ARemedyIsNamedByWhatItsTitleSpeaksOf) {
    apply("finding", R"("id":"orphan:123","title":"node: server.js has run 9 h without its terminal")");
    apply("remedy", R"("finding":"orphan:123","survivors":[]})" + std::string());
    EXPECT_TRUE(day.events.empty()) << "a line with a brace too many";
    apply("remedy", R"("finding":"orphan:123","survivors":[])");
    EXPECT_EQ(what(), "Ended node: server.js");
}

TEST_F(LineFold, ABrowserIsAskedToQuit) {
    apply("remedy", R"("finding":"browser:Chrome","gainMB":1,"survivors":[])");
    EXPECT_EQ(what(), "Quit Chrome");
}

TEST_F(LineFold, AKeyQuitMakesItAQuitWhateverItsType) {
    apply("remedy", R"("finding":"holder:app:Slack","quit":true)");
    EXPECT_EQ(what(), "Quit holder:Slack");
    day.events.clear();
    apply("remedy", R"("finding":"app:Slack","quit":"false")");
    EXPECT_EQ(what(), "Quit Slack");
    day.events.clear();
    apply("remedy", R"("finding":"app:Slack","quit":false)");
    EXPECT_TRUE(day.events.empty());
}

TEST_F(LineFold, WhatWasRefusedOrAskedBackIsNoEventWhateverTheValue) {
    apply("remedy", R"("finding":"orphan:1","refused":false)");
    apply("remedy", R"("finding":"orphan:1","needsConfirmation":null)");
    apply("remedy", R"("gainMB":1,"survivors":[])");
    apply("kill", R"("group":"node","refused":false)");
    apply("kill", R"("group":"node","needsConfirmation":0)");
    EXPECT_TRUE(day.events.empty());
}

TEST_F(LineFold, AKillNamesItsGroup) {
    apply("kill", R"("group":"node: server.js","mb":80,"survivors":[1])");
    EXPECT_EQ(what(), "Ended node: server.js");
    EXPECT_EQ(day.events[0].mb, 80);
    EXPECT_EQ(day.events[0].survivors, 1);
    EXPECT_TRUE(day.events[0].ids.empty());
    day.events.clear();
    apply("kill", R"("survivors":{})");
    EXPECT_EQ(what(), "Ended a process");
    EXPECT_EQ(day.events[0].survivors, 0);
}

TEST_F(LineFold, TheAutopilotCountsWhatItEnded) {
    apply("autopilot", R"("ended":3,"mb":512,"survivors":[])");
    EXPECT_EQ(what(), "Autopilot · 3 ended");
    EXPECT_EQ(day.events[0].mb, 512);
}

TEST_F(LineFold, ABatchTakesInItsFixes) {
    apply("remedy", R"("finding":"orphan:1","gainMB":100,"survivors":[])");
    apply("remedy", R"("finding":"orphan:2","gainMB":50,"survivors":[])", 1);
    apply("fixAll", R"("findings":["orphan:1","orphan:2"],"survivors":[9],"refused":[])", 11);
    EXPECT_EQ(what(), "Free · 2 ended");
    EXPECT_EQ(day.events[0].mb, 150);
    EXPECT_EQ(day.events[0].survivors, 1);
    EXPECT_EQ(day.events[0].ids, (std::vector<std::string>{"orphan:1", "orphan:2"}));
}

TEST_F(LineFold, ABatchLeavesWhatIsNinetySecondsOlder) {
    apply("remedy", R"("finding":"orphan:1","gainMB":100,"survivors":[])");
    apply("remedy", R"("finding":"orphan:2","gainMB":50,"survivors":[])", 1);
    apply("fixAll", R"("findings":["orphan:1","orphan:2"],"survivors":[])", 91);
    ASSERT_EQ(day.events.size(), 3u);
    EXPECT_EQ(day.events[2].what, "Free · 2 ended");
    EXPECT_EQ(day.events[2].mb, 0);
    apply("fixAll", R"("findings":["orphan:1","orphan:2"],"survivors":[])", 90);
    ASSERT_EQ(day.events.size(), 3u) << "the second remedy is 89 seconds old";
    EXPECT_EQ(day.events[2].mb, 50);
}

TEST_F(LineFold, ABatchTakesKillsAndLaterStampsButNeitherQuitsNorOtherFixes) {
    apply("kill", R"("group":"node","mb":10,"survivors":[])");
    apply("remedy", R"("finding":"browser:Chrome","gainMB":1000,"survivors":[])");
    apply("remedy", R"("finding":"orphan:3","gainMB":7,"survivors":[])");
    apply("remedy", R"("finding":"orphan:1","gainMB":5,"survivors":[])", 60);
    apply("fixAll", R"("findings":["orphan:1","browser:Chrome"],"survivors":[]})", 30);
    apply("fixAll", R"("findings":["orphan:1","browser:Chrome"],"survivors":[])", 30);
    ASSERT_EQ(day.events.size(), 3u);
    EXPECT_EQ(day.events[0].what, "Quit Chrome");
    EXPECT_EQ(day.events[1].what, "Ended 3");
    EXPECT_EQ(day.events[2].what, "Free · 2 ended");
    EXPECT_EQ(day.events[2].mb, 15);
}

TEST_F(LineFold, ACancelledBatchChangesNothing) {
    apply("remedy", R"("finding":"orphan:1","gainMB":5,"survivors":[])");
    apply("fixAll", R"("findings":["orphan:1"],"cancelled":true)", 1);
    EXPECT_EQ(what(), "Ended 1");
    apply("fixAll", R"("findings":["orphan:1"],"cancelled":false)", 1);
    EXPECT_EQ(what(), "Free · 1 ended");
    apply("fixAll", R"("cancelled":"true")", 2);
    ASSERT_EQ(day.events.size(), 2u);
    EXPECT_EQ(day.events[1].what, "Free · 0 ended");
}

TEST_F(LineFold, OtherKindsAndLooseWritingAreNotSeen) {
    apply("self", R"("mb":5)");
    apply("suggestionShown", R"("note":"tick")");
    HistoryStore::apply(R"({"kind": "tick","t":"2026-03-01T09:30:15Z"})", day);
    EXPECT_EQ(day, DayAggregate());
}

TEST_F(LineFold, TheKindOfTheWholeLineDecides) {
    HistoryStore::apply(R"({"in":{"kind":"tick"},"kind":"self","t":"2026-03-01T09:30:15Z"})", day);
    EXPECT_EQ(day, DayAggregate());
    HistoryStore::apply(R"({"in":{"kind":"tick"},"kind": "kill","group":"x","t":"2026-03-01T09:30:15Z"})", day);
    EXPECT_EQ(what(), "Ended x");
}

TEST_F(LineFold, BadLinesAreDropped) {
    for (const char* bad : {
             R"({"kind":"tick"})",
             R"({"kind":"tick","t":5})",
             R"({"kind":"tick","t":"2026-03-01T09:30:15.123Z"})",
             R"({"kind":"tick","t":"2026-03-01 09:30:15Z"})",
             R"({"kind":"tick","t":"2026-03-01T09:30:15Z")",
             R"({"kind":"tick","t":"2026-03-01T09:30:15Z","x":tru})",
             R"({"kind":"tick","t":"2026-03-01T09:30:15Z","x":01})",
             R"(["kind","tick",{"kind":"tick"}])",
             R"("kind":"tick")",
             "{\"kind\":\"tick\",\"t\":\"2026-03-01T09:30:15Z\",\"x\":\"\xff\"}",
             R"({"kind":"tick","t":"2026-03-01T09:30:15Z"} {})",
             "",
         }) {
        HistoryStore::apply(bad, day);
        EXPECT_EQ(day, DayAggregate()) << bad;
    }
}

TEST_F(LineFold, TheHourIsTheLinesOwnAndCountedInUtc) {
    HistoryStore::apply(R"({"kind":"tick","t":"2026-03-01T15:00:15+05:30"})", day);
    HistoryStore::apply(R"({"kind":"tick","t":"2026-02-28T23:59:59Z"})", day);
    ASSERT_EQ(day.hours.size(), 2u);
    EXPECT_EQ(day.hours.begin()->first, 492311);
    EXPECT_EQ(day.hours.rbegin()->first, nineOClockHour);
}

TEST_F(LineFold, SumsStayAtTheirLimits) {
    apply("remedy", R"("finding":"a","gainMB":9223372036854775807,"survivors":[])");
    apply("remedy", R"("finding":"a","gainMB":9223372036854775807,"survivors":[])", 1);
    apply("fixAll", R"("findings":["a"],"survivors":[])", 2);
    EXPECT_EQ(day.events.at(0).mb, INT64_MAX);
}

TEST_F(LineFold, ANumberBeyond64BitsIsARealOne) {
    apply(
        "tick",
        R"("swapGB":18446744073709551616,"memFreePct":-9223372036854775809,"load":2,"note":"\"98765432109876543210")");
    EXPECT_EQ(bucket().samples, 1);
    EXPECT_DOUBLE_EQ(bucket().swapMax, 18446744073709551616.0);
    EXPECT_EQ(bucket().memFreeMin, 100);
    EXPECT_DOUBLE_EQ(bucket().loadMax, 2);
    apply("kill", R"("group":"x","mb":100000000000000000000,"pid":18446744073709551615)");
    EXPECT_EQ(what(), "Ended x");
    EXPECT_EQ(day.events.at(0).mb, 0);
    apply("tick", R"("swapGB":018446744073709551616)");
    apply("tick", R"("swapGB":18446744073709551616,"load":tru)");
    EXPECT_EQ(bucket().samples, 1);
}

TEST_F(LineFold, PlainLinesAreReadLikeAllOthers) {
    const std::string plain =
        R"({"breaches":["swap","disk"],"diskFreeGB":80.15910359162008,"gpu":-1,"hogs":0,"kind":"tick","load":3.77,)"
        R"("memFreePct":12,"orphans":2,"procs":500,"session":"0A1B2C3D","sessions":1,"swapGB":1.0409212228873383,)"
        R"("swapOutMBps":1e-05,"t":"2026-03-01T09:30:15Z","top":[["Visual Studio Code",1291],["node: server.js",4895]]})";
    HistoryStore::apply(plain, day);
    EXPECT_EQ(bucket().samples, 1);
    EXPECT_DOUBLE_EQ(bucket().swapMax, 1.0409212228873383);
    EXPECT_DOUBLE_EQ(bucket().loadMax, 3.77);
    EXPECT_EQ(bucket().memFreeMin, 12);
    EXPECT_EQ(bucket().apps, (HourBucket::Apps{{"Visual Studio Code", 1291}, {"node: server.js", 4895}}));
    HistoryStore::apply(R"({"findings":["orphan:1","holder:Google Chrome"],"kind":"diagnosis","reclaimableMB":70,)"
                        R"("session":"0A1B2C3D","t":"2026-03-01T09:30:15Z"})",
                        day);
    EXPECT_EQ(bucket().reclaimMB, 70);
    EXPECT_EQ(bucket().causes, (std::set<std::string, std::less<>>{"holder:Google Chrome", "orphan:1"}));
}

TEST_F(LineFold, WhatIsReadQuicklyIsWhatTheParserReads) {
    const std::vector<std::string> lines{
        R"({"breaches":["a"],"diskFreeGB":80.15,"gpu":-1,"kind":"tick","load":3.7,"memFreePct":12,"procs":500,)"
        R"("session":"0A1B","swapGB":1.04,"swapOutMBps":1e-05,"t":"2026-03-01T09:30:15Z","top":[["Code",1291],["x",4]]})",
        R"({"findings":["orphan:1","db:2"],"kind":"diagnosis","reclaimableMB":70,"t":"2026-03-01T09:30:15Z"})",
        R"({"kind":"tick","swapGB":0,"t":"2026-03-01T09:59:59Z","top":[]})"};
    const std::string bytes = "\"\\,:[]{}0123456789.-+eEtfnul \t\x01\x7f\xc3\xa9kT";
    std::mt19937 random{11};
    const auto below = [&](std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    };
    std::size_t dropped = 0;
    std::string plainLog, otherLog;
    for (int round = 0; round < 60000; ++round) {
        std::string line = lines[below(lines.size())];
        for (std::size_t changes = below(3) + 1; changes > 0; --changes) {
            const std::size_t at = below(line.size());
            switch (below(4)) {
                case 0: line[at] = bytes[below(bytes.size())]; break;
                case 1: line.erase(at, below(4) + 1); break;
                case 2: line.insert(at, 1, bytes[below(bytes.size())]); break;
                case 3: line.insert(at, line.substr(below(line.size()), below(30))); break;
            }
        }
        if (line.empty() || line[0] != '{') continue;
        DayAggregate quick, parsed;
        HistoryStore::apply(line, quick);
        // A blank behind the brace means nothing to JSON, and makes the line one that is not written plainly.
        HistoryStore::apply("{ " + line.substr(1), parsed);
        ASSERT_EQ(quick, parsed) << line;
        plainLog += line + "\n";
        otherLog += "{ " + line.substr(1) + "\n";
        dropped += quick == DayAggregate();
    }
    EXPECT_GT(dropped, 10000u);
    EXPECT_LT(dropped, 59000u);

    // The same in one go, where each line meets what the lines before it have left.
    const LogFolder folder;
    folder.append(plainLog, "2026-03-01");
    folder.append(otherLog, "2026-03-02");
    DayAggregate quick, parsed;
    HistoryStore::ingest(quick, folder.logFile("2026-03-01"));
    HistoryStore::ingest(parsed, folder.logFile("2026-03-02"));
    EXPECT_EQ(quick.offset, plainLog.size());
    EXPECT_EQ(quick.hours, parsed.hours);
}

}  // namespace ravik
