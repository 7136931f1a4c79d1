#include <fmt/format.h>
#include <gmock/gmock.h>

#include "Tests/Cli/CommandTest.h"

namespace ravik::cli {

using nlohmann::json;

class EndCommand : public CommandTest {
protected:
    EndCommand() { orphan(200, "server"); }
    bool lives(Pid pid) { return machine.processes.find(pid) != nullptr; }
};

TEST_F(EndCommand, OnlyYesGoesAhead) {
    for (const char* answer : {"", "n", "no", "Y E S", "yess", "1"}) {
        computer.fakeTerminal.typed = {answer};
        EXPECT_EQ(call({"free"}).status, couldNot) << answer;
        EXPECT_TRUE(lives(200));
    }
    for (const char* answer : {"y", "yes"}) {
        orphan(200, "server");
        computer.fakeTerminal.typed = {answer};
        const Result result = call({"free"});
        EXPECT_EQ(result.status, done);
        EXPECT_EQ(result.out, "1 ended · 0 survivors · 100\u00a0MB\n");
        EXPECT_FALSE(lives(200));
    }
}

TEST_F(EndCommand, TheEndOfInputAndCtrlCAreANo) {
    computer.fakeTerminal.typed = {std::nullopt};
    EXPECT_EQ(call({"free"}).status, couldNot);
    EXPECT_TRUE(lives(200));
    EXPECT_EQ(logFolder.lines("fixAll").at(0)["cancelled"], true);
}

TEST_F(EndCommand, WithoutATerminalAndWithoutYesNothingEnds) {
    computer.fakeTerminal.interactive = false;
    computer.fakeTerminal.typed = {"yes"};
    const Result result = call({"free"});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_NE(result.err.find("--yes"), std::string::npos);
    EXPECT_TRUE(lives(200));
    EXPECT_EQ(call({"free", "--yes"}).status, done);
    EXPECT_FALSE(lives(200));
}

TEST_F(EndCommand, TheQuestionNamesWhatEndsAndWhatStays) {
    orphan(300, "postgres");
    computer.fakeTerminal.typed = {"n"};
    const std::string asked = call({"free"}).err;
    for (const char* text : {"End 1 program?", "Only what passes the safety check ends.", "Will end", "server",
                             "Stays running", "A database — never ended from a button.",
                             ("Ravik checks each one is still the same program, asks it to stop, and tells you if "
                              "anything doesn't."),
                             "[y/N]"}) {
        EXPECT_NE(asked.find(text), std::string::npos) << text << "\n" << asked;
    }
}

TEST_F(EndCommand, TellsInJsonWhatCameOfIt) {
    EXPECT_EQ(json::parse(call({"end", "200", "--yes", "--json"}).out),
              json::parse(R"({"outcome":"ended","survivors":[],"line":"1 ended · 0 survivors · 100\u00a0MB"})"));
    orphan(300, "postgres");
    EXPECT_EQ(json::parse(call({"end", "300", "--yes", "--json"}).out),
              json::parse(R"({"outcome":"refused","survivors":[],
                              "line":"Left running: a database server (postgres, pid 300)."})"));
    EXPECT_EQ(json::parse(call({"free", "--json"}).out),
              json::parse(R"({"outcome":"nothing","survivors":[],"line":null})"));
    orphan(400, "server");
    computer.fakeTerminal.typed = {"n"};
    EXPECT_EQ(json::parse(call({"fix", "orphan:400", "--json"}).out),
              json::parse(R"({"outcome":"cancelled","survivors":[],"line":null})"));
}

TEST_F(EndCommand, ASurvivorIsAFailure) {
    machine.processes.find(200)->ignoresTerm = true;
    machine.processes.find(200)->ignoresKill = true;
    const Result result = call({"end", "200", "--yes"});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.out, "0 ended · 1 survivor: server (pid 200) did not exit after KILL\n");
}

TEST_F(EndCommand, AFixRunsOneFinding) {
    orphan(201, "other");
    EXPECT_EQ(call({"fix", "orphan:200", "--yes"}).status, done);
    EXPECT_FALSE(lives(200));
    EXPECT_TRUE(lives(201));
    EXPECT_EQ(call({"fix", "orphan:200", "--yes"}).status, couldNot);
}

TEST_F(EndCommand, AnAdviceHasNothingToRun) {
    orphan(300, "postgres");
    const Result result = call({"fix", "db:300", "--yes"});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.err, "db:300: nothing to run\n");
}

TEST_F(EndCommand, QuitSaysWhenAnApplicationStays) {
    machine.workspace.apps.push_back({{"Editor", "Editor", 200}, -1});
    const Result result = call({"quit", "Editor", "--yes"});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.out, "Editor did not quit. Check it for a prompt.\n");
    EXPECT_TRUE(lives(200));
}

TEST_F(EndCommand, AProcessThatIsNotThereIsSaidSo) {
    EXPECT_EQ(call({"end", "999", "--yes"}).err, "There is no process 999.\n");
}

TEST_F(EndCommand, ANameMistypedDoesNotPassForAnApplicationThatQuit) {
    orphan(300, "stranger").uid = machine.host.uid + 1;
    const std::string theirs = fmt::format("[{}] stranger", machine.host.uid + 1);
    for (const std::string& app : {std::string("Edditor"), theirs}) {
        const Result result = call({"quit", app, "--yes"});
        EXPECT_THAT(result.err,
                    testing::StartsWith("Nothing called \"" + app + "\" is running; ravik apps lists what is.\n"));
    }
}

TEST_F(EndCommand, OfAnApplicationThatIsThereNothingElseIsSaid) {
    machine.workspace.apps.push_back({{"Editor", "Editor", 300}, -1});
    EXPECT_THAT(call({"quit", "Editor", "--yes"}).err, testing::Not(testing::HasSubstr("Nothing called")));
}

TEST_F(EndCommand, ACopyOfABrowserForAToolIsNotTheUsersApplication) {
    fakes::FakeProcess& browser = orphan(300, "chrome");
    browser.command = "/tmp/chrome --user-data-dir=/tmp/puppeteer_dev_profile-1";
    machine.workspace.apps.push_back({{"chrome", "chrome", 300}, -1});
    EXPECT_THAT(call({"quit", "chrome", "--yes"}).err,
                testing::StartsWith("Nothing called \"chrome\" is running; ravik apps lists what is.\n"));
}

TEST_F(EndCommand, ARefusalIsJsonWhereJsonIsAskedFor) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> refused{
        {{"end", "999"}, "There is no process 999."},
        {{"fix", "orphan:999"}, "There is no finding \"orphan:999\" now; ravik diagnose lists them."}};
    for (auto [words, line] : refused) {
        words.emplace_back("--json");
        const Result result = call(words);
        EXPECT_EQ(result.status, couldNot);
        EXPECT_EQ(json::parse(result.out),
                  json({{"outcome", "refused"}, {"survivors", json::array()}, {"line", line}}));
        EXPECT_EQ(result.err, "");
    }
}

TEST_F(EndCommand, WritesOnlyItsOwnDeeds) {
    call({"free", "--yes"});
    for (const json& line : logFolder.lines()) {
        const std::string kind = line["kind"];
        EXPECT_TRUE(kind == "confirm" || kind == "remedy" || kind == "fixAll") << kind;
    }
    EXPECT_EQ(logFolder.lines().size(), 3u);
}

}  // namespace ravik::cli
