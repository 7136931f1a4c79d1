#include "Core/Record/HistoryJson.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Core/Record/HistoryStore.h"
#include "Tests/Core/Record/LogFolder.h"

namespace ravik {

namespace {

using nlohmann::json;

struct HistoryJsonTest : testing::Test {
    LogFolder folder;
    HistoryJson::Query query;

    std::vector<DayAggregate> days() const { return HistoryStore::load(folder.logs, folder.cache); }
    json object() const { return HistoryJson::object(days(), query); }
    void fill() {
        folder.append(
            R"({"kind":"tick","t":"2026-03-01T09:30:00Z","swapGB":9.0,"memFreePct":20,"load":2.5,"top":[["Slack",1200]]})"
            "\n"
            R"({"kind":"finding","t":"2026-03-01T09:30:00Z","id":"orphan:7","title":"node has run 9 h"})"
            "\n"
            R"({"kind":"diagnosis","t":"2026-03-01T09:30:00Z","findings":["orphan:7","disk"],"reclaimableMB":300})"
            "\n"
            R"({"kind":"remedy","t":"2026-03-01T09:40:00Z","finding":"orphan:7","gainMB":300,"survivors":[]})"
            "\n"
            R"({"kind":"tick","t":"2026-03-01T10:10:00Z","swapGB":4.0})"
            "\n");
    }
};

}  // namespace

TEST_F(HistoryJsonTest, AnEmptyFolderGivesTheEmptyResult) {
    EXPECT_EQ(object(), json::parse(R"({"days":[],"data":{"hours":[],"events":[],"titles":{}},"range":null,"lanes":[],
        "biggestDrop":null,"topApps":[],"cap":21.0,
        "headline":{"value":"0.0","unit":"GB","caption":"spilled to disk at worst","sentence":"No fix in this span yet."},
        "swapSummary":"Swap used, hourly: now 0.0 GB, peak 0.0 GB at —. 0 fixes marked.","week":null})"));
    EXPECT_EQ(HistoryJson::text(days(), query, Host()),
              "Collecting\nHistory fills in hour by hour. Check back soon.\n");
}

TEST_F(HistoryJsonTest, HoldsTheDaysTheJoinedDataAndWhatTheScreenSays) {
    fill();
    query.span = HistoryScreen::Span::week;
    query.clock = 1772370000;
    const json result = object();
    const json nine = json::parse(R"({"start":1772355600.0,"samples":1,"swapSum":9.0,"swapMax":9.0,"memFreeMin":20,
        "loadMax":2.5,"reclaimMB":300,"apps":{"Slack":1200},"causes":["disk","orphan:7"]})");
    const json ten = json::parse(R"({"start":1772359200.0,"samples":1,"swapSum":4.0,"swapMax":4.0,"memFreeMin":100,
        "loadMax":0.0,"reclaimMB":0,"apps":{},"causes":[]})");
    const json fix =
        json::parse(R"({"at":1772358000.0,"what":"Ended node","ids":["orphan:7"],"mb":300,"survivors":0})");
    const json titles = json::parse(R"({"orphan:7":"node has run 9 h"})");
    EXPECT_EQ(result["days"], json::array({{{"day", "2026-03-01"},
                                            {"offset", std::filesystem::file_size(folder.logFile())},
                                            {"hours", {{"492321", nine}, {"492322", ten}}},
                                            {"events", json::array({fix})},
                                            {"titles", titles}}}));
    EXPECT_EQ(result["data"], (json{{"hours", {nine, ten}}, {"events", json::array({fix})}, {"titles", titles}}));
    EXPECT_EQ(result["range"], json::parse(R"({"start":1772355600.0,"end":1772362800.0})"));
    EXPECT_EQ(result["lanes"], json::array({{{"id", "orphan:7@1772355600"},
                                             {"cause", "orphan:7"},
                                             {"label", "node"},
                                             {"start", 1772355600.0},
                                             {"end", 1772358000.0},
                                             {"endedBy", fix}}}));
    EXPECT_EQ(result["biggestDrop"], (json{{"before", 9.0}, {"after", 4.0}, {"event", fix}}));
    EXPECT_EQ(result["topApps"], json::array({"Slack"}));
    EXPECT_EQ(result["cap"], 12.0);
    EXPECT_EQ(result["headline"]["value"], "9.0 → 4.0");
    EXPECT_EQ(result["swapSummary"], "Swap used, hourly: now 4.0 GB, peak 9.0 GB at 2026-03-01 09:00Z. 1 fix marked.");
    EXPECT_EQ(result["week"], "This week: 1 fix · 300 MB given back");
    EXPECT_EQ(result.size(), 10u);
}

TEST_F(HistoryJsonTest, TheGivenNowIsTheRangesEndAndTheWeeksClock) {
    fill();
    query.clock = 1772370000;
    query.now = 1772370000 + 30 * 86400.0;
    const json result = object();
    EXPECT_EQ(result["range"], (json{{"start", *query.now - 86400}, {"end", *query.now}}));
    EXPECT_EQ(result["lanes"], json::array());
    EXPECT_EQ(result["topApps"], json::array());
    EXPECT_EQ(result["week"], nullptr);
    EXPECT_EQ(result["data"]["hours"].size(), 2u);
}

TEST_F(HistoryJsonTest, PeopleReadTheSame) {
    fill();
    query.clock = 1772370000;
    const std::string text = HistoryJson::text(days(), query, Host());
    for (const char* line : {"9.0 → 4.0 GB spilled to disk\n", "It fell within an hour of Ended node, ",
                             "\nApps\n  Slack: up to 1.2 GB held\n", "\nLeftovers\n  node  40 min, ended by Ravik\n",
                             "\nWhat Ravik did\n  2026-03-01 09:40Z  Ended node, 300\u00a0MB, all ended\n",
                             "\nThis week: 1 fix · 300 MB given back\n"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line << "\nin\n" << text;
    }
}

}  // namespace ravik
