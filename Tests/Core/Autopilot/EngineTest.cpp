#include "Core/Autopilot/Engine.h"

#include <gtest/gtest.h>

#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using fakes::hour;
using fakes::Machine;
using fakes::Making;
using fakes::minute;

namespace {

/// A machine under pressure, watched since long ago.
struct Desk : Machine {
    Desk() { stats.memoryFreePercent = 19; }

    Engine engine;
    Engine::History history;
    std::optional<std::string> foreground;

    std::vector<Decision> decide() const {
        return engine.decide(snapshot(), history, foreground, host, fakes::now, fakes::now);
    }
    std::vector<std::string> targets() const {
        std::vector<std::string> found;
        for (const Decision& decision : decide()) found.push_back(decision.target);
        return found;
    }
};

using Targets = std::vector<std::string>;

Making app(Pid pid, const std::string& name) {
    return Making(pid, "/Applications/" + name + ".app/Contents/MacOS/" + name);
}
Making leftover(Pid pid) { return Making(pid, "/Users/me/.npm/_npx/1/mcp-server").parent(1).age(25 * hour); }

}  // namespace

TEST(EngineConditions, PressureIsBelowTwentyPercentOrAboveAMebibyteASecond) {
    Machine machine;
    const auto pressed = [&](int free, double rate) {
        machine.stats.memoryFreePercent = free;
        machine.stats.swapOutBytesPerSec = rate;
        return Engine::conditions(machine.snapshot()).underPressure;
    };
    EXPECT_TRUE(pressed(19, 0));
    EXPECT_FALSE(pressed(20, 1048576.0));
    EXPECT_TRUE(pressed(20, 1048576.5));
}

TEST(EngineConditions, LoadedIsAboveTheCoresOfWhichThereIsAtLeastOne) {
    Machine machine;
    const auto loaded = [&](double load, int cores) {
        machine.stats.loadAverage = load;
        machine.stats.cpuCount = cores;
        return Engine::conditions(machine.snapshot()).loaded;
    };
    EXPECT_FALSE(loaded(8, 8));
    EXPECT_TRUE(loaded(8.1, 8));
    EXPECT_FALSE(loaded(1, 0));
    EXPECT_TRUE(loaded(1.1, 0));
}

TEST(Engine, PausesAnIdleAppUnderPressure) {
    Desk desk;
    desk.procs = {app(7, "Foo").mb(150), app(8, "Foo").mb(150)};
    desk.history.observedSince = fakes::now - 42.9 * minute;
    const Decision expected{
        Decision::Action::pause, "Foo", {7, 8}, 300 * fakes::MiB, "idle 42 min, not focused, memory under pressure"};
    EXPECT_EQ(desk.decide(), std::vector{expected});
}

TEST(Engine, WithoutPressureNothingIsPaused) {
    Desk desk;
    desk.procs = {app(7, "Foo").mb(300)};
    desk.stats.memoryFreePercent = 20;
    EXPECT_TRUE(desk.decide().empty());
}

TEST(Engine, ASmallGroupIsNotWorthAPause) {
    Desk desk;
    desk.procs = {app(7, "Foo").bytes(209715200)};
    EXPECT_EQ(desk.decide().size(), 1u);
    desk.procs = {app(7, "Foo").bytes(209715199)};
    EXPECT_TRUE(desk.decide().empty());
}

TEST(Engine, AWorkingAppIsNotPausedButMayBeDemoted) {
    Desk desk;
    desk.stats.loadAverage = 9;
    desk.procs = {app(7, "Foo").mb(300).cpu(1.0)};
    EXPECT_TRUE(desk.decide().empty());
    desk.procs = {app(7, "Foo").mb(300).cpu(0.99)};
    EXPECT_EQ(desk.decide().at(0).action, Decision::Action::pause);
    desk.procs = {app(7, "Foo").mb(300).cpu(25.0)};
    const Decision expected{
        Decision::Action::demote, "Foo", {7}, 0, "25% CPU in the background while your Mac is busy"};
    EXPECT_EQ(desk.decide(), std::vector{expected});
    desk.procs = {app(7, "Foo").mb(300).cpu(24.9)};
    EXPECT_TRUE(desk.decide().empty());
}

TEST(Engine, TheReasonSpeaksOfTheHostsMachine) {
    Desk desk;
    desk.host = fakes::linuxHost();
    desk.stats.loadAverage = 9;
    desk.procs = {Making(7, "/home/me/x").uid(1000).cpu(99.9)};
    EXPECT_EQ(desk.decide().at(0).reason, "99% CPU in the background while your computer is busy");
}

TEST(Engine, IdleTimeCountsFromTheLatestOfUseFocusAndStart) {
    Desk desk;
    desk.procs = {app(7, "Foo").mb(300)};
    const auto pauses = [&] { return !desk.decide().empty(); };
    desk.history.observedSince = fakes::now - 30 * minute;
    EXPECT_TRUE(pauses());
    desk.history.observedSince = fakes::now - 30 * minute + 1;
    EXPECT_FALSE(pauses());
    desk.history.observedSince = 0;
    desk.history.lastBusy["Foo"] = fakes::now - 29 * minute;
    EXPECT_FALSE(pauses());
    desk.history.lastBusy["Foo"] = fakes::now - 31 * minute;
    EXPECT_TRUE(pauses());
    desk.history.lastFocused["Foo"] = fakes::now - 1;
    EXPECT_FALSE(pauses());
}

TEST(Engine, TheForegroundAppIsLeftAlone) {
    Desk desk;
    desk.procs = {app(7, "Foo").mb(300), app(8, "Bar").mb(300)};
    desk.foreground = "Foo";
    EXPECT_EQ(desk.targets(), Targets{"Bar"});
}

TEST(Engine, NeverTouchesOthersFurnitureSystemOrLiveSessions) {
    Desk desk;
    desk.procs = {
        app(7, "Foo").mb(300).uid(0),
        app(8, "Finder").mb(300),
        app(9, "Keychain Access").mb(300),
        Making(10, "/System/Library/x").mb(300),
        Making(11, "/Library/Apple/x").mb(300),
        Making(12, "/Users/me/bin/claude").mb(300),
        Making(13, "node /srv/a.js").parent(12).mb(300),
        app(14, "Bar").mb(300),
        Making(15, "/Applications/Bar.app/Contents/playwright/x").mb(1),
        Making(16, "/System/Applications/Mail.app/Contents/MacOS/Mail").mb(300),
    };
    EXPECT_EQ(desk.targets(), Targets{});
    desk.procs.push_back(app(17, "Baz").mb(300));
    EXPECT_EQ(desk.targets(), Targets{"Baz"});
}

TEST(Engine, AnAutomationBrowserIsSkippedAsAGroup) {
    Desk desk;
    desk.procs = {
        app(7, "Google Chrome").mb(300),
        Making(8, "/Applications/Google Chrome.app/x --user-data-dir=/tmp/puppeteer chrome-devtools").mb(300)};
    EXPECT_TRUE(desk.decide().empty());
}

TEST(Engine, EndsWhatEndedSessionsLeftADayAgo) {
    Desk desk;
    desk.procs = {leftover(7).mb(10), leftover(8).mb(20).age(24 * hour), leftover(9).mb(40).age(24 * hour - 1)};
    const Decision expected{Decision::Action::end,
                            "agent leftovers",
                            {7, 8},
                            30 * fakes::MiB,
                            "2 processes from ended sessions, older than 24 h"};
    EXPECT_EQ(desk.decide(), std::vector{expected});
}

TEST(Engine, DropsLeftoversThatAreKeptBusyOrForbiddenAndKeepsTheOthers) {
    Desk desk;
    desk.procs = {leftover(7).mb(10), leftover(8).cpu(5.0), leftover(9), Making(10, "git gc").parent(9),
                  Making(11, "/Users/me/.claude/x --kept").parent(1).age(25 * hour)};
    desk.engine.keep = {"/Users/me/.claude/x --kept"};
    ASSERT_EQ(desk.decide().size(), 1u);
    EXPECT_EQ(desk.decide()[0].pids, (Pids{7}));
}

TEST(Engine, OnlyTheFirstEndedRecordIsLookedAt) {
    Desk desk;
    desk.procs = {leftover(7).age(2 * hour)};
    Snapshot snapshot = desk.snapshot();
    AgentSession second = snapshot.sessions.at(0);
    second.members = {leftover(8)};
    snapshot.sessions.push_back(second);
    EXPECT_TRUE(desk.engine.decide(snapshot, {}, {}, desk.host, fakes::now, fakes::now).empty());
}

TEST(Engine, TheAgeOfLeftoversGoesByTheClockAndNotByTheTick) {
    Desk desk;
    desk.procs = {leftover(7).age(23 * hour)};
    EXPECT_TRUE(desk.decide().empty());
    EXPECT_EQ(desk.engine.decide(desk.snapshot(), {}, {}, desk.host, fakes::now, fakes::now + hour).size(), 1u);
}

TEST(Engine, SortsByGainThenByTargetBackwards) {
    Desk desk;
    desk.stats.loadAverage = 9;
    desk.procs = {app(7, "Abc").cpu(30), app(8, "Xyz").cpu(30), app(9, "Mno").mb(300), app(10, "Qrs").mb(400)};
    EXPECT_EQ(desk.targets(), (Targets{"Qrs", "Mno", "Xyz", "Abc"}));
}

TEST(Decision, ActionsAreStoredByTheirWords) {
    EXPECT_EQ(parseAction("pause"), Decision::Action::pause);
    EXPECT_EQ(parseAction("demote"), Decision::Action::demote);
    EXPECT_EQ(parseAction("end"), Decision::Action::end);
    EXPECT_EQ(parseAction("Pause"), std::nullopt);
}

}  // namespace ravik
