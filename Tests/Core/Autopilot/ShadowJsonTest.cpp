#include "Core/Autopilot/ShadowJson.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Core/Record/LogReader.h"
#include "Tests/Core/Record/LogFolder.h"

namespace ravik {

namespace {

using nlohmann::json;

ShadowRecord recordOf(const LogFolder& folder) {
    return ShadowRecord::build(LogReader::lines(folder.logs, ShadowRecord::kinds));
}

}  // namespace

TEST(ShadowJson, AnEmptyLogHasThreeRulesThatNeedData) {
    const json result = ShadowJson::object(recordOf(LogFolder()), {});
    ASSERT_EQ(result["rules"].size(), 3u);
    EXPECT_EQ(result["rules"][2], json::parse(R"({"action":"end","decided":0,"resolved":0,"regrets":0,"accepted":0,
        "dismissed":0,"standing":{"kind":"needsData"},"status":"needs more data","approved":false})"));
    EXPECT_EQ(result["entries"], json::array());
    EXPECT_EQ(result["since"], nullptr);
    EXPECT_EQ(result["until"], nullptr);
    EXPECT_EQ(result["mostRegretted"], json::array());
    EXPECT_EQ(
        result["hero"],
        json::parse(R"({"value":"—","line":"Learning — not acting yet. A rule can turn on once it stays under 5%."})"));
}

TEST(ShadowJson, HoldsWhatTheLogSays) {
    const LogFolder folder;
    folder.append(
        R"({"kind":"shadowDecision","t":"2026-03-01T09:30:15Z","action":"pause","target":"Slack","reason":"idle","gainMB":5})"
        "\n"
        R"({"kind":"shadowOutcome","t":"2026-03-01T10:30:15Z","action":"pause","target":"Slack","outcome":"regret:woke","afterMin":60})"
        "\n"
        R"({"kind":"shadowDecision","t":"2026-03-01T11:30:15Z","action":"demote","target":"node"})"
        "\n");
    const json result = ShadowJson::object(recordOf(folder), {Decision::Action::pause});
    EXPECT_EQ(result["entries"], json::parse(R"([
        {"id":0,"at":1772357415.0,"action":"pause","target":"Slack","reason":"idle","gainMB":5,"outcome":"regret:woke","afterMin":60},
        {"id":1,"at":1772364615.0,"action":"demote","target":"node","reason":"","gainMB":0,"outcome":null,"afterMin":null}])"));
    EXPECT_EQ(result["since"], 1772357415.0);
    EXPECT_EQ(result["until"], 1772364615.0);
    EXPECT_EQ(result["mostRegretted"], json::parse(R"([["Slack",1]])"));
    EXPECT_EQ(result["rules"][1]["approved"], true);
    EXPECT_EQ(result["hero"]["value"], "100%");
}

TEST(ShadowJson, EachStandingHasItsForm) {
    ShadowRecord record;
    record.since = 0;
    record.until = 6 * 86400.0;
    record.rules[0].resolved = record.rules[1].resolved = 30;
    record.rules[1].regrets = 3;
    json rules = ShadowJson::object(record, {})["rules"];
    EXPECT_EQ(rules[0]["standing"], json::parse(R"({"kind":"waiting","days":1})"));
    EXPECT_EQ(rules[0]["status"], "ready in 1 day");
    EXPECT_EQ(rules[1]["standing"], json::parse(R"({"kind":"tooOften","percent":10.0})"));
    record.until = 7 * 86400.0;
    EXPECT_EQ(ShadowJson::object(record, {})["rules"][0]["standing"], json::parse(R"({"kind":"ready"})"));
}

TEST(ShadowJson, PeopleReadTheSame) {
    ShadowRecord record;
    record.mostRegretted = {{"Slack", 2}};
    const std::string text = ShadowJson::text(record, {}, false);
    for (const char* line : {"— of its choices would have been wrong\n", "It has not made a choice yet.",
                             "  pause   Pause idle apps             not enough data   needs more data\n",
                             "Stays a suggestion: ending cannot be undone\n", "never paused here.\n",
                             "Most often wrong about\n  2 Slack\n"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line << "\nin\n" << text;
    }
}

}  // namespace ravik
