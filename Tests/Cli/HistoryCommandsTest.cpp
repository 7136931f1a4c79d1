#include <fstream>

#include "Tests/Cli/CommandTest.h"

namespace ravik::cli {

using nlohmann::json;

class HistoryCommands : public CommandTest {
protected:
    HistoryCommands() { machine.platform.folders.historyCache = m_cache.path() / "history"; }

    void append(const std::string& day, const std::string& text) const {
        std::filesystem::create_directories(logFolder.log.folder());
        std::ofstream(logFolder.log.folder() / (day + ".jsonl"), std::ios::app) << text;
    }

private:
    fakes::TemporaryFolder m_cache;
};

TEST_F(HistoryCommands, AMissingFolderGivesTheEmptyResult) {
    const Result result = call({"history", "--json"});
    EXPECT_EQ(result.status, done);
    const json history = json::parse(result.out);
    EXPECT_EQ(history["days"], json::array());
    EXPECT_EQ(history["range"], nullptr);
    EXPECT_EQ(history["week"], nullptr);
    EXPECT_EQ(call({"history"}).status, done);
}

TEST_F(HistoryCommands, FoldsTheLog) {
    append("2026-03-01", "{\"t\":\"2026-03-01T09:30:15Z\",\"kind\":\"tick\",\"session\":\"A\",\"swapGB\":2.5}\n");
    const json history = json::parse(call({"history", "--json", "--span", "week"}).out);
    EXPECT_EQ(history["data"]["hours"].at(0)["swapMax"], 2.5);
    EXPECT_EQ(history["days"].at(0)["day"], "2026-03-01");
    EXPECT_TRUE(std::filesystem::exists(machine.platform.folders.historyCache / "2026-03-01.json"));
}

TEST_F(HistoryCommands, ANameCannotSteerTheTerminal) {
    append("2026-03-01",
           "{\"t\":\"2026-03-01T09:30:15Z\",\"kind\":\"tick\",\"session\":\"A\",\"swapGB\":2.5,"
           "\"top\":[[\"evil\\u001b[31m\\u009b2J\",900]]}\n");
    const std::string out = call({"history"}).out;
    EXPECT_NE(out.find("\n  evil\\u001b[31m\\u009b2J: up to "), std::string::npos) << out;
    EXPECT_EQ(out.find('\x1b'), std::string::npos);
    EXPECT_EQ(out.find("\u009b"), std::string::npos);
}

TEST_F(HistoryCommands, WrongValuesAreWrongWords) {
    EXPECT_EQ(call({"history", "--span", "month"}).status, wrongWords);
    EXPECT_EQ(call({"history", "--now", "soon"}).status, wrongWords);
    EXPECT_EQ(call({"report", "--day", "yesterday"}).status, wrongWords);
}

TEST_F(HistoryCommands, ReportsADayThatHasALog) {
    append("2026-03-01", "{\"t\":\"2026-03-01T09:30:15Z\",\"kind\":\"launch\",\"session\":\"A\",\"version\":\"1\"}\n");
    const json report = json::parse(call({"report", "--json", "--day", "2026-03-01"}).out);
    EXPECT_EQ(report["os"], "debian 12");
    EXPECT_EQ(report["id"], "made when you switch this on");
    const Result none = call({"report", "--day", "2026-03-02"});
    EXPECT_EQ(none.status, couldNot);
    EXPECT_EQ(std::ranges::count(none.err, '\n'), 1);
}

}  // namespace ravik::cli
