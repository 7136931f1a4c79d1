#include "Core/Reporting/Usage.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Tests/Core/Record/LogFolder.h"

namespace ravik {

namespace {

using nlohmann::json;
using Days = std::vector<std::string>;

const Usage::About about{"5C1D", "0.1.0", "debian 12", 16ull << 30};

json reportOf(std::initializer_list<const char*> lines) {
    std::vector<json> parsed;
    for (const char* line : lines) parsed.push_back(json::parse(line));
    return Usage::report("2026-03-01", parsed, about);
}

}  // namespace

TEST(Usage, AReportOfNothingHoldsItsFrameAlone) {
    EXPECT_EQ(reportOf({}),
              json::parse(R"({"v":1,"id":"5C1D","day":"2026-03-01","app":"0.1.0","os":"debian 12","ramGB":16,
        "counts":{},"findings":{},"fixed":{},"freedMB":0,"safety":{}})"));
}

TEST(Usage, MemoryIsRoundedToWholeGigabytes) {
    Usage::About machine = about;
    machine.ramBytes = (16ull << 30) - (600ull << 20);
    EXPECT_EQ(Usage::report("d", {}, machine)["ramGB"], 15);
    machine.ramBytes = (16ull << 30) - (400ull << 20);
    EXPECT_EQ(Usage::report("d", {}, machine)["ramGB"], 16);
}

TEST(Usage, CountsWhatEachKindSays) {
    const json report = reportOf({
        R"({"kind":"tick","breaches":[]})",
        R"({"kind":"tick","breaches":["swap"]})",
        R"({"kind":"tick"})",
        R"({"kind":"finding","id":"orphan:812"})",
        R"({"kind":"finding","id":"orphan:813"})",
        R"({"kind":"finding","id":"disk"})",
        R"({"kind":"finding","id":"secret"})",
        R"({"kind":"finding","id":"secret:/home/x"})",
        R"({"kind":"finding"})",
        R"({"kind":"remedy","finding":"browser:Chrome","gainMB":900,"survivors":[]})",
        R"({"kind":"remedy","finding":"orphan:1","gainMB":100,"survivors":[4]})",
        R"({"kind":"remedy","finding":"orphan:2","gainMB":50,"refused":"busy"})",
        R"({"kind":"fixAll","findings":[],"cancelled":true})",
        R"({"kind":"fixAll","findings":[],"survivors":[]})",
        R"({"kind":"window","open":true})",
        R"({"kind":"window","open":false})",
        R"({"kind":"notifications","denied":false})",
        R"({"kind":"notifications","denied":true})",
        R"({"kind":"shadowDecision","action":"pause","target":"Slack"})",
        R"({"kind":"shadowOutcome","action":"pause","outcome":"regret:woke"})",
        R"({"kind":"shadowOutcome","action":"pause","outcome":"held"})",
        R"({"kind":"shadowOutcome","action":"end"})",
        R"({"kind":"shadowDecision","action":"/home/x"})",
        R"({"kind":"launch","version":"0.1.0"})",
        R"({"kind":"panel"})",
        R"({"kind":"panel"})",
        R"({"nothing":1})",
        R"([1])",
    });
    EXPECT_EQ(report["counts"],
              json::parse(R"({"samples":3,"pressureSamples":1,"remedyRefused":1,"freeCancelled":1,"free":1,
        "windowOpens":1,"launch":1,"panel":2})"));
    EXPECT_EQ(report["findings"], json::parse(R"({"orphan":2,"disk":1,"other":3})"));
    EXPECT_EQ(report["fixed"], json::parse(R"({"browser":1,"orphan":1})"));
    EXPECT_EQ(report["freedMB"], 1000);
    EXPECT_EQ(report["safety"], json::parse(R"({"pause":{"decided":1,"regret":1,"held":1},"end":{"held":1}})"));
    EXPECT_EQ(report["alertsAllowed"], false);
}

TEST(Usage, NoTextOfTheLogGetsIntoTheReport) {
    const std::string report =
        reportOf({R"({"kind":"finding","id":"/home/me:9","title":"TITLE","evidence":"EVIDENCE"})",
                  R"({"kind":"shadowDecision","action":"pause","target":"TARGET","reason":"REASON"})",
                  R"({"kind":"remedy","finding":"/home/me:9","survivors":[]})",
                  R"({"kind":"notify","title":"TITLE","causes":["/home/me:9"]})"})
            .dump();
    for (const char* word : {"TITLE", "EVIDENCE", "TARGET", "REASON", "/home"}) {
        EXPECT_EQ(report.find(word), std::string::npos) << word;
    }
}

TEST(Usage, AFindingsKindIsWhatStandsBeforeTheColon) {
    for (const char* kind : {"leftovers", "automation", "db", "orphan", "hog", "vm", "browser", "holder", "sessions",
                             "thrash", "disk", "indexing"}) {
        EXPECT_EQ(Usage::findingKind(kind), kind);
        EXPECT_EQ(Usage::findingKind(std::string(kind) + ":x:y"), kind);
    }
    EXPECT_EQ(Usage::findingKind("Orphan:1"), "other");
    EXPECT_EQ(Usage::findingKind(""), "other");
    EXPECT_EQ(Usage::findingKind(":orphan"), "other");
}

TEST(Usage, DueAreTheFinishedDaysThatWereNotSent) {
    const Days logs{"2026-02-26", "2026-02-27", "2026-02-28", "2026-03-01", "2026-03-02"};
    EXPECT_EQ(Usage::due(logs, "2026-02-26", "2026-03-01"), (Days{"2026-02-27", "2026-02-28"}));
    EXPECT_EQ(Usage::due(logs, "2026-02-28", "2026-03-01"), Days{});
    EXPECT_EQ(Usage::due(logs, std::nullopt, "2026-03-01"), Days{});
    EXPECT_EQ(Usage::due(Days{"b", "a"}, "", "c"), (Days{"b", "a"}));
}

TEST(Usage, ADaysReportCountsThatDayAlone) {
    const LogFolder folder;
    folder.append(
        "{\"kind\":\"panel\"}\n{\"kind\":\"keep\",\"cmd\":\"panel tick finding\"}\n"
        "{\"kind\":\"diagnosis\",\"findings\":[\"disk\"]}\n",
        "2026-03-01");
    folder.append("{\"kind\":\"panel\"}\n", "2026-03-02");
    EXPECT_EQ(Usage::reportOfDay(folder.logs, "2026-03-01", about)["counts"], json::parse(R"({"panel":1})"));
}

TEST(Usage, ADayWithoutALogIsRefusedInASentence) {
    const LogFolder folder;
    folder.append("", "2026-03-01");
    EXPECT_FALSE(Usage::refusal(folder.logs, "2026-03-01"));
    EXPECT_EQ(Usage::refusal(folder.logs, "2026-03-02"), "There is no log of 2026-03-02.");
    EXPECT_TRUE(Usage::refusal(folder.root / "none", "2026-03-01"));
}

TEST(Usage, ThePreviewSaysThatThereIsNoIdYet) {
    const LogFolder folder;
    Usage::About nobody = about;
    nobody.id.clear();
    const std::string text = Usage::preview(folder.logs, "2026-03-01", nobody);
    EXPECT_EQ(json::parse(text)["id"], "made when you switch this on");
    EXPECT_NE(text.find("\n  \"day\": \"2026-03-01\""), std::string::npos) << text;
    EXPECT_EQ(json::parse(Usage::preview(folder.logs, "2026-03-01", about))["id"], "5C1D");
}

TEST(Usage, NamesTheSystemByItsReleaseFile) {
    EXPECT_EQ(Usage::osName("NAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\nID=debian\n"), "debian 12");
    EXPECT_EQ(Usage::osName("ID='opensuse-leap'\nVERSION_ID='15.6'"), "opensuse-leap 15.6");
    EXPECT_EQ(Usage::osName("ID=arch\n"), "arch");
    EXPECT_EQ(Usage::osName(""), "");
}

TEST(Usage, KnowsADateFromAnythingElse) {
    EXPECT_TRUE(Usage::isDay("2026-03-01"));
    for (const char* text : {"2026-02-30", "2026-3-1", "yesterday", "", "2026-03-01 ", "../../../x"}) {
        EXPECT_FALSE(Usage::isDay(text)) << text;
    }
}

}  // namespace ravik
