#include <fstream>

#include "Core/Base/Iso8601.h"
#include "Tests/Cli/CommandTest.h"

namespace ravik::cli {

using nlohmann::json;

namespace {

constexpr Time monday = 1'760'000'000;
constexpr double day = 86400;

}  // namespace

class AutopilotCommand : public CommandTest {
protected:
    void line(const std::string& kind, const std::string& action, Time at, const json& more = json::object()) const {
        json object{
            {"t", Iso8601::format(at)}, {"kind", kind}, {"session", "A"}, {"action", action}, {"target", "Foo"}};
        object.update(more);
        std::filesystem::create_directories(folder());
        std::ofstream(folder() / "2025-10-09.jsonl", std::ios::app) << object.dump() << "\n";
    }
    /// Scored choices of a rule, the first of them wrong, over so many days.
    void scored(const std::string& action, int count, int wrong, double days) const {
        for (int i = 0; i < count; ++i) {
            const Time at = monday + days * day * i / (count - 1);
            line("shadowOutcome", action, at, {{"outcome", i < wrong ? "regret:focused" : "held"}, {"afterMin", 60}});
        }
    }
    std::filesystem::path folder() const { return m_folder.path() / "logs"; }
    Result approve(const std::string& rule) { return call({"autopilot", "approve", rule, "--logs", folder()}); }
    json stored() const {
        const auto hit = machine.defaults.values.find("autopilotApproved");
        return hit == machine.defaults.values.end() ? json() : hit->second;
    }

private:
    fakes::TemporaryFolder m_folder;
};

TEST_F(AutopilotCommand, WithoutALogNothingIsKnown) {
    const Result result = call({"autopilot", "--json", "--logs", folder()});
    EXPECT_EQ(result.status, done);
    const json record = json::parse(result.out);
    ASSERT_EQ(record["rules"].size(), 3u);
    EXPECT_EQ(record["rules"][0]["action"], "demote");
    EXPECT_EQ(record["rules"][1]["action"], "pause");
    EXPECT_EQ(record["rules"][2]["action"], "end");
    for (const json& rule : record["rules"]) {
        EXPECT_EQ(rule["standing"], (json{{"kind", "needsData"}}));
        EXPECT_EQ(rule["status"], "needs more data");
        EXPECT_EQ(rule["approved"], false);
        EXPECT_EQ(rule["resolved"], 0);
    }
    EXPECT_EQ(record["entries"], json::array());
    EXPECT_EQ(record["since"], nullptr);
    EXPECT_EQ(record["until"], nullptr);
    EXPECT_EQ(record["mostRegretted"], json::array());
    EXPECT_EQ(record["hero"]["value"], "—");
}

TEST_F(AutopilotCommand, ReadsItsOwnLogWithoutBeingTold) {
    logFolder.log.event("shadowDecision",
                        {{"action", "pause"}, {"target", "Foo"}, {"pids", 1}, {"gainMB", 300}, {"reason", "why"}});
    logFolder.log.flush();
    const json record = json::parse(call({"autopilot", "--json"}).out);
    ASSERT_EQ(record["entries"].size(), 1u);
    EXPECT_EQ(record["entries"][0]["target"], "Foo");
    EXPECT_EQ(record["entries"][0]["gainMB"], 300);
    EXPECT_EQ(record["entries"][0]["outcome"], nullptr);
}

TEST_F(AutopilotCommand, ShowsTheRecordToPeople) {
    scored("pause", 40, 1, 8);
    const Result result = call({"autopilot", "--logs", folder()});
    EXPECT_EQ(result.status, done);
    EXPECT_NE(result.out.find("2% of its choices would have been wrong"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("Pause idle apps"), std::string::npos);
    EXPECT_NE(result.out.find("ready to turn on"), std::string::npos);
}

TEST_F(AutopilotCommand, ATargetCannotSteerTheTerminal) {
    line("shadowDecision", "pause", monday, {{"target", "\x1b[2J"}, {"reason", "why"}});
    const Result result = call({"autopilot", "--logs", folder()});
    EXPECT_EQ(result.out.find('\x1b'), std::string::npos);
}

TEST_F(AutopilotCommand, ARuleThatHasShownToBeRightIsTurnedOn) {
    scored("pause", 40, 1, 7);
    const Result result = approve("pause");
    EXPECT_EQ(result.status, done) << result.err;
    EXPECT_EQ(stored(), json::array({"pause"}));
    const auto lines = logFolder.lines("autopilotApproval");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0]["action"], "pause");
    EXPECT_EQ(lines[0]["approved"], true);
    EXPECT_EQ(json::parse(call({"autopilot", "--json", "--logs", folder()}).out)["rules"][1]["approved"], true);
}

TEST_F(AutopilotCommand, TheFolderMayStandBeforeTheWord) {
    scored("demote", 30, 1, 7);
    EXPECT_EQ(call({"autopilot", "--logs", folder(), "approve", "demote"}).status, done);
    EXPECT_EQ(stored(), json::array({"demote"}));
}

TEST_F(AutopilotCommand, TheGateStaysShutBeforeThat) {
    const auto refused = [&](const std::string& why) {
        const Result result = approve("pause");
        EXPECT_EQ(result.status, couldNot);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "\"Pause idle apps\" cannot be turned on: " + why + ".\n");
        EXPECT_EQ(stored(), json());
        EXPECT_TRUE(logFolder.lines("autopilotApproval").empty());
        std::filesystem::remove_all(folder());
    };
    refused("needs more data");
    scored("pause", 29, 0, 30);
    refused("needs more data");
    scored("pause", 40, 2, 30);
    refused("too often wrong");
    scored("pause", 40, 1, 6);
    refused("ready in 1 day");
    scored("demote", 40, 0, 30);
    refused("needs more data");
}

TEST_F(AutopilotCommand, OnceOnItStaysOnWhateverTheRecordSays) {
    machine.defaults.values["autopilotApproved"] = json::array({"pause"});
    scored("pause", 40, 30, 8);
    EXPECT_EQ(approve("pause").status, done);
    EXPECT_EQ(stored(), json::array({"pause"}));
    EXPECT_TRUE(logFolder.lines("autopilotApproval").empty());
}

TEST_F(AutopilotCommand, ARuleCanAlwaysBeTurnedOff) {
    machine.defaults.values["autopilotApproved"] = json::array({"demote", "pause", "sleep"});
    EXPECT_EQ(call({"autopilot", "withdraw", "pause"}).status, done);
    EXPECT_EQ(stored(), json::array({"demote"}));
    const auto lines = logFolder.lines("autopilotApproval");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0]["action"], "pause");
    EXPECT_EQ(lines[0]["approved"], false);
    EXPECT_EQ(call({"autopilot", "withdraw", "pause"}).status, done);
    EXPECT_EQ(logFolder.lines("autopilotApproval").size(), 1u);
}

TEST_F(AutopilotCommand, EndingHasNoSwitch) {
    scored("end", 400, 0, 30);
    for (const char* rule : {"end", "sleep", "Pause", ""}) {
        for (const char* verb : {"approve", "withdraw"}) {
            const Result result = call({"autopilot", verb, rule, "--logs", folder()});
            EXPECT_EQ(result.status, wrongWords) << verb << " " << rule;
            EXPECT_EQ(std::ranges::count(result.err, '\n'), 1);
            EXPECT_EQ(stored(), json());
        }
    }
    EXPECT_EQ(call({"autopilot", "approve"}).status, wrongWords);
    EXPECT_EQ(call({"autopilot", "dance"}).status, wrongWords);
}

}  // namespace ravik::cli
