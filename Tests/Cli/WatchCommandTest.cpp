#include "Tests/Cli/CommandTest.h"

namespace ravik::cli {

using nlohmann::json;

class WatchCommand : public CommandTest {
protected:
    /// Watches for so many seconds and is then asked to end.
    Result watch(std::vector<std::string> words, double seconds) {
        machine.loop.after(seconds, [this] { computer.terminate(); });
        words.insert(words.begin(), "watch");
        return call(words);
    }
};

TEST_F(WatchCommand, PrintsALineATick) {
    const Result result = watch({}, 12);
    EXPECT_EQ(result.status, done);
    EXPECT_EQ(std::ranges::count(result.out, '\n'), 3);
    EXPECT_NE(result.out.find("memory free 50 %"), std::string::npos) << result.out;
    EXPECT_EQ(logFolder.lines("tick").size(), 3u);
    EXPECT_EQ(logFolder.lines("launch").size(), 1u);
}

TEST_F(WatchCommand, PrintsAnObjectATick) {
    orphan(200, "server");
    const Result result = watch({"--json", "--interval", "2"}, 3);
    std::istringstream lines(result.out);
    std::string line;
    int count = 0;
    for (; std::getline(lines, line); ++count) {
        const json tick = json::parse(line);
        EXPECT_EQ(tick["procs"], 1);
        EXPECT_EQ(tick["findings"], json::array({"orphan:200"}));
        EXPECT_EQ(tick["freeableBytes"], 100ull << 20);
        EXPECT_EQ(tick["reclaimableBytes"], 100ull << 20);
        EXPECT_TRUE(tick["takenAt"].is_number_float());
        EXPECT_EQ(tick.size(), 16u);
    }
    EXPECT_EQ(count, 2);
}

TEST_F(WatchCommand, TheEnvironmentSetsTheInterval) {
    computer.variables["TOLVANE_INTERVAL"] = "0.5";
    EXPECT_EQ(std::ranges::count(watch({}, 2.2).out, '\n'), 5);
    for (const char* text : {"abc", "-1", "nan"}) {
        computer.variables["TOLVANE_INTERVAL"] = text;
        EXPECT_EQ(std::ranges::count(watch({}, 6).out, '\n'), 2) << text;
    }
}

TEST_F(WatchCommand, ASecondWatcherSaysWhoWatches) {
    machine.watchLock.refusal = WatchLock::Refusal{812, "Process 812 is already watching."};
    const Result result = call({"watch"});
    EXPECT_EQ(result.status, couldNot);
    EXPECT_EQ(result.err, "Process 812 is already watching.\n");
    EXPECT_TRUE(logFolder.lines().empty());
}

TEST_F(WatchCommand, LetsGoOfTheLockAndOfWhatItHolds) {
    machine.readings.load = 20;
    machine.defaults.values["autopilotApproved"] = json::array({"demote"});
    orphan(200, "burner").cpuPercent = 90;
    machine.processes.find(200)->ppid = 2;
    bool held = false;
    machine.loop.after(11, [&] { held = machine.processes.find(200)->demoted; });
    watch({}, 12);
    EXPECT_TRUE(held);
    EXPECT_FALSE(machine.processes.find(200)->demoted);
    EXPECT_FALSE(machine.watchLock.held);
    const json release = logFolder.lines("autopilotRelease").at(0);
    EXPECT_EQ(release["why"], "quit");
    EXPECT_EQ(release["target"], "burner");
}

TEST_F(WatchCommand, AnAnsweredAlertIsLoggedAndToldTheCommandForIt) {
    machine.loop.after(1, [this] { machine.notifier.press("free"); });
    machine.loop.after(2, [this] { machine.notifier.press("default"); });
    EXPECT_EQ(watch({}, 3).err,
              "ravik free ends what is safe to end, after a question.\nravik diagnose tells what was found.\n");
    const auto lines = logFolder.lines("notificationAction");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0]["action"], "free");
    EXPECT_EQ(lines[1]["action"], "default");
    EXPECT_FALSE(machine.notifier.press);
}

TEST_F(WatchCommand, EndsInOrderWhenNobodyReadsAnyMore) {
    outputIsBroken = true;
    computer.fakeTerminal.lostReader = true;
    const Time begin = machine.clock.now();
    EXPECT_EQ(watch({}, 60).status, couldNot);
    EXPECT_LT(machine.clock.now() - begin, 5);
    EXPECT_FALSE(machine.watchLock.held);
}

}  // namespace ravik::cli
