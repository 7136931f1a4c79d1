#include <gmock/gmock.h>

#include <csignal>
#include <set>

#include <fmt/format.h>
#include <unistd.h>

#include "Core/Watch/Monitor.h"
#include "Platform/Computer.h"
#include "Tests/EndToEnd/Support.h"
#include "Tests/Platform/Support/ChildWork.h"

namespace ravik::endtoend {
namespace {

using platform::waitUntil;
using testing::MatchesRegex;

/// The keys of a log line besides those that every line has.
std::set<std::string> keys(const Json& line) {
    std::set<std::string> names;
    for (const auto& [name, value] : line.items()) names.insert(name);
    for (const char* common : {"t", "kind", "session"}) EXPECT_EQ(names.erase(common), 1u) << line;
    return names;
}

class Record : public EndToEnd {
protected:
    void SetUp() override {
        EndToEnd::SetUp();
        home.storeShortPatience();
    }
    /// A server whose terminal has closed, with a child.
    Pid leave() {
        const std::string child = home.idle("node") + " worker.js";
        const std::string script = child + " & wait";
        const std::string node = home.shell("server");
        const Pid terminal = start({home.shell("bash"), "-c", fmt::format("{} -c '{}' & wait", node, script)});
        command = node + " -c " + script;
        worker = find(child);
        const Pid pid = find(command);
        reaper.end(terminal);
        return findAdopted(command) == pid ? pid : 0;
    }
    std::string command;
    Pid worker = 0;
};

TEST_F(Record, OfABatchHoldsTheQuestionTheRemedyAndTheBatch) {
    const Pid server = leave();
    const std::string id = fmt::format("orphan:{}", server);
    const Result result = run(home, {"free", "--yes"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, MatchesRegex("1 ended · 0 survivors · [0-9]+ MB\n"));
    EXPECT_FALSE(lives(server));
    EXPECT_FALSE(lives(worker));

    Json confirm = home.logLines("confirm").at(0);
    EXPECT_EQ(keys(confirm), (std::set<std::string>{"title", "confirmed", "seconds", "active"}));
    EXPECT_EQ(confirm["title"], "End 1 program?");
    EXPECT_EQ(confirm["confirmed"], true);
    Json remedy = home.logLines("remedy").at(0);
    EXPECT_EQ(keys(remedy), (std::set<std::string>{"finding", "gainMB", "survivors"}));
    EXPECT_EQ(remedy["finding"], id);
    EXPECT_TRUE(remedy["gainMB"].is_number_unsigned());
    EXPECT_EQ(remedy["survivors"], Json::array());
    Json batch = home.logLines("fixAll").at(0);
    EXPECT_EQ(keys(batch), (std::set<std::string>{"findings", "survivors", "refused"}));
    EXPECT_EQ(batch["findings"], Json({id}));
    EXPECT_EQ(batch["survivors"], Json::array());
    EXPECT_EQ(batch["refused"], Json::array());
    // One that does not watch writes no more than its own deeds.
    for (const char* kind : {"tick", "finding", "diagnosis", "launch", "self"})
        EXPECT_TRUE(home.logLines(kind).empty());
}

TEST_F(Record, OfOneFixCountsTheTree) {
    const Pid server = leave();
    const Result result = run(home, {"fix", fmt::format("orphan:{}", server), "--yes"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, MatchesRegex("2 ended · 0 survivors · [0-9]+ MB\n"));
    EXPECT_TRUE(home.logLines("fixAll").empty());
    EXPECT_EQ(home.logLines("remedy").size(), 1u);
    EXPECT_EQ(home.settings()["lastFix"]["line"].get<std::string>() + "\n", result.out);
}

TEST_F(Record, OfOneProcessByHandTellsWhatItWas) {
    const Pid server = leave();
    const Result result = run(home, {"end", std::to_string(server), "--yes", "--json"});
    EXPECT_EQ(result.status, 0) << result.err;
    Json told = result.json();
    EXPECT_EQ(told["outcome"], "ended");
    EXPECT_EQ(told["survivors"], Json::array());
    EXPECT_THAT(told["line"], MatchesRegex("2 ended · 0 survivors · [0-9]+ MB"));

    EXPECT_EQ(home.logLines("confirm").at(0)["title"], "End server?");
    Json kill = home.logLines("kill").at(0);
    EXPECT_EQ(keys(kill), (std::set<std::string>{"pid", "group", "cmd", "ageH", "mb", "children", "survivors"}));
    EXPECT_EQ(kill["pid"], server);
    EXPECT_EQ(kill["group"], "server");
    EXPECT_EQ(kill["cmd"], command.substr(0, 120));
    EXPECT_EQ(kill["children"], 1);
    EXPECT_EQ(kill["survivors"], Json::array());
    EXPECT_TRUE(kill["mb"].is_number_unsigned());
    EXPECT_GT(kill["ageH"], 0.0);
    EXPECT_LT(kill["ageH"], 60 / 3600.0);
    EXPECT_FALSE(home.settings().contains("lastFix"));
}

TEST_F(Record, OfTheLastFixSurvivesARestart) {
    leave();
    const Result result = run(home, {"free", "--yes"});
    const std::string line = result.out.substr(0, result.out.find('\n'));
    // A later command with nothing to do leaves it as it is.
    EXPECT_EQ(run(home, {"free", "--yes"}).out, "Nothing is safe to end in one click.\n");

    EXPECT_EQ(platform::inChild([&] {
                  for (const std::string& variable : home.environment()) putenv(const_cast<char*>(variable.c_str()));
                  const auto computer = makeComputer({.groupOf = [](const Proc&) { return std::string(); },
                                                      .isToolHelper = [](std::string_view) { return false; }},
                                                     "test");
                  Log::Options options;
                  options.folder = computer->platform().folders.log;
                  Log log(options);
                  Host host;
                  host.uid = computer->uid();
                  const Monitor monitor(computer->platform(), log, host, Monitor::Role::reader);
                  EXPECT_TRUE(monitor.lastFix().has_value());
                  if (monitor.lastFix()) {
                      EXPECT_EQ(monitor.lastFix()->line, line);
                      EXPECT_NEAR(monitor.lastFix()->at, static_cast<double>(time(nullptr)), 30);
                  }
                  return testing::Test::HasFailure() ? 1 : 0;
              }),
              0);
}

class Watch : public EndToEnd {
protected:
    void expectEndedBy(int number) {
        Running watch(home, {"watch", "--interval", "1"});
        ASSERT_TRUE(watch.says("memory free"));
        watch.signal(number);
        const Result result = watch.finish(10);
        EXPECT_EQ(result.status, 0) << result.err;
    }
};

TEST_F(Watch, IsOneProcessesWorkAtATime) {
    Running first(home, {"watch", "--interval", "1"});
    Running second(home, {"watch", "--interval", "1"});
    // Whichever was quicker watches.
    ASSERT_TRUE(waitUntil([&] { return !lives(first.pid()) || !lives(second.pid()); }));
    Running& loser = lives(first.pid()) ? second : first;
    Running& winner = lives(first.pid()) ? first : second;
    const Result refused = loser.finish();
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err,
              fmt::format("ravik watch (process {}) already watches this computer, and only one can.\n", winner.pid()));
    ASSERT_TRUE(winner.says("memory free"));
    EXPECT_TRUE(lives(winner.pid()));

    // Whoever dies without a word frees the place.
    winner.signal(SIGKILL);
    EXPECT_EQ(winner.finish().status, 128 + SIGKILL);
    Running third(home, {"watch", "--interval", "1"});
    EXPECT_TRUE(third.says("memory free"));
    third.signal(SIGTERM);
    EXPECT_EQ(third.finish().status, 0);
}

TEST_F(Watch, EndsWellOnTerm) { expectEndedBy(SIGTERM); }

TEST_F(Watch, EndsWellOnInterrupt) { expectEndedBy(SIGINT); }

TEST_F(Watch, EndsWellOnHangup) { expectEndedBy(SIGHUP); }

TEST_F(Watch, EndsAtOnceWhenItIsAskedBeforeItsFirstTick) {
    Running watch(home, {"watch", "--interval", "60"});
    ASSERT_TRUE(waitUntil([&] { return !home.logLines("launch").empty(); }));
    watch.signal(SIGTERM);
    const Result result = watch.finish(10);
    EXPECT_EQ(result.status, 0);
}

}  // namespace
}  // namespace ravik::endtoend
