#include "Core/Ending/Actions.h"

#include <gtest/gtest.h>

#include "Tests/Fakes/FakeAsker.h"
#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik {

namespace {

using fakes::FakeMachine;
using fakes::FakeProcess;
using nlohmann::json;

constexpr std::uint64_t mib = 1ull << 20;

class ActionsTest : public testing::Test {
protected:
    ActionsTest() { machine.clock.advance(100000); }

    /// A program that has lost its terminal: a leftover of its own.
    FakeProcess& orphan(Pid pid, const std::string& name, std::uint64_t bytes = 100 * mib) {
        FakeProcess process;
        process.pid = pid;
        process.name = name;
        process.command = "/tmp/" + name;
        process.started = machine.clock.now() - 7200;
        process.footprintBytes = bytes;
        return machine.processes.add(process);
    }

    /// What an ended AI session left.
    FakeProcess& leftover(Pid pid, std::uint64_t bytes = 100 * mib) {
        FakeProcess& process = orphan(pid, "node", bytes);
        process.command = "/tmp/mcp-server-" + std::to_string(pid);
        return process;
    }

    Monitor& monitor() {
        if (!m_monitor) {
            m_monitor = std::make_unique<Monitor>(machine.platform, logFolder.log, machine.host, Monitor::Role::reader);
            m_monitor->readNow();
        }
        return *m_monitor;
    }

    const Finding& finding(std::string_view id) {
        for (const Finding& candidate : monitor().snapshot().findings) {
            if (candidate.id == id) return candidate;
        }
        ADD_FAILURE() << "no finding " << id;
        static const Finding none;
        return none;
    }

    std::optional<std::string> settle(Task<std::optional<std::string>> task) {
        std::optional<std::string> line;
        bool over = false;
        spawn(std::move(task), [&](std::optional<std::string> result) {
            line = std::move(result);
            over = true;
        });
        for (int step = 0; step < 1000 && !over; ++step) machine.loop.runFor(0.1);
        EXPECT_TRUE(over);
        return line;
    }

    std::optional<std::string> run(const Finding& which) { return settle(Actions(monitor(), asker).run(which)); }

    FakeMachine machine;
    fakes::LogFolder logFolder{machine.clock};
    fakes::FakeAsker asker;

private:
    std::unique_ptr<Monitor> m_monitor;
};

}  // namespace

TEST_F(ActionsTest, ResultLineOfACleanRun) {
    EXPECT_EQ(Actions::resultLine(3, {}, {}, 1200 * mib, {}, machine.host), "3 ended · 0 survivors · 1,200\u00a0MB");
}

TEST_F(ActionsTest, ResultLineNamesSurvivorsAndClaimsNothing) {
    orphan(812, "node");
    EXPECT_EQ(Actions::resultLine(1, {812}, monitor().snapshot(), 1200 * mib, {"a", "b"}, machine.host),
              "1 ended · 1 survivor: node (pid 812) did not exit after KILL · 2 left running");
    EXPECT_EQ(Actions::resultLine(0, {812, 9}, monitor().snapshot(), 0, {}, machine.host),
              "0 ended · 2 survivors: node (pid 812), pid 9 did not exit after KILL");
}

TEST_F(ActionsTest, EndsWhatAFindingNamesAfterOneQuestion) {
    orphan(200, "server");
    Actions actions(monitor(), asker);
    EXPECT_EQ(settle(actions.run(finding("orphan:200"))), "1 ended · 0 survivors · 100\u00a0MB");
    EXPECT_EQ(machine.processes.find(200), nullptr);
    ASSERT_EQ(asker.asked.size(), 1u);
    EXPECT_EQ(asker.asked[0].title, "End server?");
    EXPECT_EQ(asker.asked[0].message, "Frees about 100\u00a0MB.");
    EXPECT_EQ(asker.asked[0].verb, "End 1 program");
    EXPECT_TRUE(asker.asked[0].leftAlone.empty());
    EXPECT_EQ(monitor().lastFix()->line, "1 ended · 0 survivors · 100\u00a0MB");

    const auto remedies = logFolder.lines("remedy");
    ASSERT_EQ(remedies.size(), 1u);
    EXPECT_EQ(remedies[0]["finding"], "orphan:200");
    EXPECT_EQ(remedies[0]["gainMB"], 100);
    EXPECT_EQ(remedies[0]["survivors"], json::array());
    EXPECT_FALSE(remedies[0].contains("quit"));
    const auto confirms = logFolder.lines("confirm");
    ASSERT_EQ(confirms.size(), 1u);
    EXPECT_EQ(confirms[0]["title"], "End server?");
    EXPECT_EQ(confirms[0]["confirmed"], true);
    EXPECT_TRUE(confirms[0]["seconds"].is_number());
    EXPECT_EQ(confirms[0]["active"], true);
}

TEST_F(ActionsTest, ANoEndsNothingAndIsLogged) {
    orphan(200, "server");
    asker.answer = false;
    EXPECT_EQ(run(finding("orphan:200")), std::nullopt);
    EXPECT_TRUE(machine.processes.sent.empty());
    EXPECT_EQ(logFolder.lines("confirm")[0]["confirmed"], false);
    EXPECT_TRUE(logFolder.lines("remedy").empty());
    EXPECT_EQ(monitor().lastFix(), std::nullopt);
}

TEST_F(ActionsTest, ACautionIsConfirmedByTheOneQuestion) {
    orphan(200, "server").cpuPercent = 20;
    monitor().readNow();
    machine.clock.advance(1);
    monitor().readNow();
    EXPECT_EQ(run(finding("orphan:200")), "1 ended · 0 survivors · 100\u00a0MB");
    ASSERT_EQ(asker.asked.size(), 1u);
    EXPECT_EQ(asker.asked[0].message,
              "Frees about 100\u00a0MB. server is actively working (20% CPU), so it may lose that work.");
    EXPECT_EQ(asker.asked[0].ends[0].tone, Tone::caution);
}

TEST_F(ActionsTest, ATreeThatGainsAGitWhileTheQuestionStandsIsLeftRunning) {
    orphan(200, "server");
    asker.whileAsked = [&] {
        FakeProcess git;
        git.pid = 300;
        git.ppid = 200;
        git.name = "git";
        git.command = "git gc";
        machine.processes.add(git);
    };
    EXPECT_EQ(run(finding("orphan:200")), "Left running: a git operation in progress (git, pid 300).");
    EXPECT_TRUE(machine.processes.sent.empty());
    EXPECT_EQ(logFolder.lines("remedy")[0]["refused"], "a git operation in progress (git, pid 300)");
    EXPECT_EQ(monitor().lastFix(), std::nullopt);
}

TEST_F(ActionsTest, APidThatChangesHandsWhileTheQuestionStandsIsLeftRunning) {
    orphan(200, "server");
    asker.whileAsked = [&] {
        machine.clock.advance(3600);
        orphan(200, "editor").started = machine.clock.now() - 60;
        monitor().readNow();
    };
    EXPECT_EQ(run(finding("orphan:200")), "1 ended · 0 survivors · 100\u00a0MB");
    EXPECT_NE(machine.processes.find(200), nullptr);
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(ActionsTest, FreeAllLeavesAPidAloneThatChangedHandsWhileTheQuestionStood) {
    orphan(200, "server");
    orphan(300, "other");
    asker.whileAsked = [&] {
        orphan(200, "editor");
        monitor().readNow();
    };
    settle(Actions(monitor(), asker).freeAll({}));
    EXPECT_NE(machine.processes.find(200), nullptr);
    EXPECT_EQ(machine.processes.find(300), nullptr);
}

TEST_F(ActionsTest, EndByHandLeavesAPidAloneThatChangedHands) {
    orphan(200, "server");
    asker.whileAsked = [&] {
        orphan(200, "editor");
        monitor().readNow();
    };
    settle(Actions(monitor(), asker).end(200, "server"));
    EXPECT_NE(machine.processes.find(200), nullptr);
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(ActionsTest, ATreeThatIsStillTheSameEndsAfterALongQuestion) {
    orphan(200, "server");
    asker.whileAsked = [&] {
        machine.clock.advance(3600);
        monitor().readNow();
    };
    run(finding("orphan:200"));
    EXPECT_EQ(machine.processes.find(200), nullptr);
}

TEST_F(ActionsTest, AdviceRunsNothing) {
    orphan(200, "postgres");
    EXPECT_EQ(run(finding("db:200")), std::nullopt);
    EXPECT_TRUE(asker.asked.empty());
    EXPECT_TRUE(logFolder.lines().empty());
}

TEST_F(ActionsTest, QuitsAnApplicationAndSaysSo) {
    machine.workspace.apps.push_back({{"Editor", "Editor", 200}, 1});
    EXPECT_EQ(settle(Actions(monitor(), asker).quit("Editor", 300 * mib)), "Editor quit · about 300\u00a0MB");
    EXPECT_EQ(asker.asked[0].title, "Quit Editor?");
    EXPECT_EQ(asker.asked[0].message,
              "Ravik asks Editor to quit and waits up to 30 s. Most browsers restore their tabs when you reopen them.");
    EXPECT_EQ(asker.asked[0].verb, "Quit Editor");
    EXPECT_EQ(asker.asked[0].ends[0].line, "Only your own Editor, never an automation copy.");
    EXPECT_EQ(asker.asked[0].ends[0].amount, "300\u00a0MB");
    const auto line = logFolder.lines("remedy").at(0);
    EXPECT_EQ(line["finding"], "app:Editor");
    EXPECT_EQ(line["quit"], true);
    EXPECT_EQ(line["survivors"], json::array());
    EXPECT_EQ(monitor().lastFix()->line, "Editor quit · about 300\u00a0MB");
}

TEST_F(ActionsTest, AnApplicationThatStaysIsReportedAsItStands) {
    machine.workspace.apps.push_back({{"Editor", "Editor", 200}, -1});
    EXPECT_EQ(settle(Actions(monitor(), asker).quit("Editor", 0)), "Editor did not quit. Check it for a prompt.");
    const auto line = logFolder.lines("remedy").at(0);
    EXPECT_EQ(line["quit"], false);
    EXPECT_EQ(line["refused"], "Editor did not quit. Check it for a prompt.");
    EXPECT_EQ(monitor().lastFix(), std::nullopt);
}

TEST_F(ActionsTest, AnApplicationThatHasAlreadyGoneCountsAsQuit) {
    EXPECT_EQ(settle(Actions(monitor(), asker).quit("Editor", 5 * mib)), "Editor quit · about 5\u00a0MB");
    EXPECT_EQ(monitor().lastFix()->line, "Editor quit · about 5\u00a0MB");
}

TEST_F(ActionsTest, EndByHandListsTheTreeHeaviestFirst) {
    orphan(200, "server", 10 * mib);
    FakeProcess& child = orphan(201, "helper", 30 * mib);
    child.ppid = 200;
    EXPECT_EQ(settle(Actions(monitor(), asker).end(200, "server")), "2 ended · 0 survivors · 40\u00a0MB");
    const Confirmation& question = asker.asked.at(0);
    EXPECT_EQ(question.title, "End server?");
    EXPECT_EQ(question.message, "Ends 2 programs together, about 40\u00a0MB.");
    EXPECT_EQ(question.verb, "End 2 programs");
    ASSERT_EQ(question.ends.size(), 2u);
    EXPECT_EQ(question.ends[0].name, "helper");
    EXPECT_EQ(question.ends[0].line, "Running for 2 h");
    EXPECT_EQ(question.ends[0].amount, "30\u00a0MB");
    EXPECT_EQ(question.ends[0].tone, Tone::safe);

    const auto line = logFolder.lines("kill").at(0);
    EXPECT_EQ(line["pid"], 200);
    EXPECT_EQ(line["group"], "server");
    EXPECT_EQ(line["cmd"], "/tmp/server");
    EXPECT_NEAR(line["ageH"].get<double>(), 2.0, 0.01);
    EXPECT_EQ(line["mb"], 10);
    EXPECT_EQ(line["children"], 1);
    EXPECT_EQ(line["survivors"], json::array());
    EXPECT_EQ(monitor().lastFix(), std::nullopt);
}

TEST_F(ActionsTest, EndOfANeverProcessAsksNothing) {
    orphan(200, "postgres");
    EXPECT_EQ(settle(Actions(monitor(), asker).end(200, "postgres")),
              "Left running: a database server (postgres, pid 200).");
    EXPECT_TRUE(asker.asked.empty());
}

TEST_F(ActionsTest, FreeAllWithNothingToFreeAsksAndWritesNothing) {
    monitor();
    EXPECT_EQ(settle(Actions(monitor(), asker).freeAll({})), std::nullopt);
    EXPECT_TRUE(asker.asked.empty());
    EXPECT_TRUE(logFolder.lines().empty());
}

TEST_F(ActionsTest, ACancelledFreeAllIsLogged) {
    leftover(200);
    asker.answer = false;
    bool confirmed = false;
    EXPECT_EQ(settle(Actions(monitor(), asker).freeAll([&] { confirmed = true; })), std::nullopt);
    EXPECT_FALSE(confirmed);
    const auto line = logFolder.lines("fixAll").at(0);
    EXPECT_EQ(line["findings"], json::array({"leftovers"}));
    EXPECT_EQ(line["cancelled"], true);
    EXPECT_FALSE(line.contains("survivors"));
}

TEST_F(ActionsTest, FreeAllEndsAllThatIsSafe) {
    leftover(200);
    leftover(201);
    orphan(300, "server");
    orphan(400, "postgres");
    int confirmed = 0;
    EXPECT_EQ(settle(Actions(monitor(), asker).freeAll([&] { ++confirmed; })), "3 ended · 0 survivors · 300\u00a0MB");
    EXPECT_EQ(confirmed, 1);
    EXPECT_NE(machine.processes.find(400), nullptr);
    EXPECT_EQ(asker.asked.at(0).title, "End 3 programs?");
    EXPECT_EQ(asker.asked[0].message, "Frees 300\u00a0MB. Only what passes the safety check ends.");
    const auto line = logFolder.lines("fixAll").at(0);
    EXPECT_EQ(line["findings"], json::array({"leftovers", "orphan:300"}));
    EXPECT_EQ(line["survivors"], json::array());
    EXPECT_EQ(line["refused"], json::array());
    EXPECT_EQ(monitor().lastFix()->line, "3 ended · 0 survivors · 300\u00a0MB");
}

TEST_F(ActionsTest, ABatchNeverConfirmsACaution) {
    orphan(300, "server");
    monitor().readNow();
    asker.whileAsked = [&] {
        machine.processes.find(300)->cpuPercent = 30;
        machine.clock.advance(5);
        monitor().readNow();
    };
    EXPECT_EQ(settle(Actions(monitor(), asker).freeAll({})), "0 ended · 0 survivors · 100\u00a0MB · 1 left running");
    EXPECT_TRUE(machine.processes.sent.empty());
    EXPECT_EQ(logFolder.lines("remedy").at(0)["needsConfirmation"], "server is actively working (30% CPU)");
}

TEST_F(ActionsTest, ABatchOfRefusalsIsRecordedAllTheSame) {
    orphan(300, "server");
    monitor();
    asker.whileAsked = [&] { machine.processes.find(300)->name = "rsync"; };
    const std::string line = "0 ended · 0 survivors · 100\u00a0MB · 1 left running";
    EXPECT_EQ(settle(Actions(monitor(), asker).freeAll({})), line);
    EXPECT_EQ(monitor().lastFix()->line, line);
    EXPECT_EQ(logFolder.lines("fixAll").at(0)["refused"], json::array({"a file copy in progress (rsync, pid 300)"}));
}

TEST_F(ActionsTest, KillOfAPidThatHasLeftTheSnapshotIsLoggedAsUnknown) {
    EXPECT_EQ(monitor().kill(999, false), EndResult(Ended{{999}}));
    const auto line = logFolder.lines("kill").at(0);
    EXPECT_EQ(line["group"], "?");
    EXPECT_EQ(line["cmd"], "");
    EXPECT_EQ(line["ageH"], -1.0);
    EXPECT_EQ(line["mb"], 0);
    EXPECT_EQ(line["survivors"], json::array({999}));
}

TEST_F(ActionsTest, TheLastFixSurvivesARestart) {
    monitor().recordFix("2 ended");
    Monitor next(machine.platform, logFolder.log, machine.host, Monitor::Role::reader);
    ASSERT_TRUE(next.lastFix());
    EXPECT_EQ(next.lastFix()->line, "2 ended");
    EXPECT_EQ(next.lastFix()->at, std::floor(machine.clock.now()));
}

TEST_F(ActionsTest, ALastFixWithoutAKeyOrOfAnotherTypeCountsAsAbsent) {
    for (const json& stored :
         {json{{"line", "x"}}, json{{"at", "2026-03-01T09:30:15Z"}}, json{{"at", 5}, {"line", "x"}}, json("x"),
          json{{"at", "2026-03-01T09:30:15Z"}, {"line", 5}}}) {
        machine.defaults.values["lastFix"] = stored;
        EXPECT_EQ(Monitor(machine.platform, logFolder.log, machine.host, Monitor::Role::reader).lastFix(),
                  std::nullopt);
    }
}

}  // namespace ravik
