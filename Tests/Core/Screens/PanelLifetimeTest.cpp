// A panel is thrown away whenever it closes, whatever is under way.
#include <gtest/gtest.h>

#include "Core/Diagnosis/KeepList.h"
#include "Tests/Core/Screens/PanelDesk.h"

namespace ravik {

namespace {

using namespace fakes;

struct PanelLifetimeTest : testing::Test, protected PanelDesk {};

}  // namespace

TEST_F(PanelLifetimeTest, AFixGoesOnToItsEndWhenThePanelClosesOnTheQuestion) {
    orphan(200);
    tick();
    open();
    asker.held = true;
    model->run("orphan:200");
    close();
    const int before = changes;
    asker.say(true);
    settle();
    EXPECT_EQ(machine.processes.find(200), nullptr);
    EXPECT_EQ(lines("confirm").at(0)["confirmed"], true);
    EXPECT_EQ(lines("remedy").at(0)["finding"], "orphan:200");
    EXPECT_EQ(monitor->lastFix()->line, "1 ended · 0 survivors · 100\u00a0MB");
    EXPECT_EQ(changes, before);
    EXPECT_TRUE(everythingLetGo());
}

TEST_F(PanelLifetimeTest, FreeGoesOnToItsEndWhenThePanelClosesWhileItRuns) {
    orphan(200);
    leftover(201);
    tick();
    open();
    machine.loop.holdBackground = true;
    model->free();
    close();
    machine.loop.holdBackground = false;
    settle();
    EXPECT_EQ(machine.processes.find(200), nullptr);
    EXPECT_EQ(machine.processes.find(201), nullptr);
    EXPECT_EQ(lines("fixAll").size(), 1u);
    EXPECT_EQ(lines("remedy").size(), 2u);
    EXPECT_TRUE(everythingLetGo());
}

TEST_F(PanelLifetimeTest, TheQuestionItselfMayCloseThePanel) {
    orphan(200);
    orphan(201);
    tick();
    asker.whileAsked = [this] { close(); };
    open();
    model->run("orphan:200");
    settle();
    open();
    model->free();
    settle();
    EXPECT_EQ(machine.processes.find(200), nullptr);
    EXPECT_EQ(machine.processes.find(201), nullptr);
    EXPECT_TRUE(everythingLetGo());
}

TEST_F(PanelLifetimeTest, WhoIsToldOfAChangeMayCloseThePanel) {
    open();
    onChange = [this] { close(); };
    tick();
    EXPECT_EQ(model, nullptr);
    EXPECT_EQ(changes, 1);
    tick();
    EXPECT_EQ(changes, 1);
    onChange = nullptr;
    EXPECT_TRUE(everythingLetGo());
}

TEST_F(PanelLifetimeTest, AWeekThatComesTooLateIsDropped) {
    machine.loop.holdBackground = true;
    open();
    close();
    machine.loop.holdBackground = false;
    settle();
    EXPECT_EQ(changes, 0);
    EXPECT_TRUE(everythingLetGo());
}

TEST_F(PanelLifetimeTest, ABundleThatComesTooLateTellsNobody) {
    tick();
    open();
    model->sendFeedback();
    settle();
    close();
    const int before = changes;
    bundles.front()("Saved to the Desktop");
    bundles.clear();
    settle();
    EXPECT_EQ(changes, before);
    EXPECT_TRUE(everythingLetGo());
}

TEST_F(PanelLifetimeTest, FiveHundredOpeningsInEightHoursOfTicksLeaveNothingBehind) {
    constexpr int openings = 500;
    constexpr double turn = 8 * 3600.0 / openings;
    asker.answer = true;
    monitor->start();
    settle();
    const std::size_t timers = machine.loop.timers();
    int fixes = 0;
    int kept = 0;
    int noes = 0;
    for (int opening = 0; opening < openings; ++opening) {
        const Pid pid = 1000 + opening;
        const std::string id = "orphan:" + std::to_string(pid);
        const int what = opening % 10;
        // The week is read from a log; to fold this one anew 500 times would take longer than all the rest.
        if (opening == 20) machine.platform.folders.log = cache.path() / "none";
        if (what == 1 || what == 4 || what == 7) orphan(pid).command += " " + std::to_string(pid);
        machine.loop.runFor(turn / 2);
        open();
        machine.loop.runFor(what == 2 ? 0 : turn / 4);
        if (what == 1) {  // ended with the panel open
            model->run(id);
            machine.loop.runFor(1);
            ASSERT_TRUE(row(id).resolved);
            ++fixes;
        } else if (what == 4) {  // ended while the panel closes
            model->run(id);
            ++fixes;
        } else if (what == 7) {  // a no, and then kept
            asker.answer = false;
            model->run(id);
            asker.answer = true;
            model->keep(id);
            ++noes;
            ++kept;
        } else if (what == 9) {
            machine.processes.end(pid - 2);
            model->sendFeedback();
            bundles.front()("Saved to the Desktop");
            bundles.clear();
        }
        close();
        machine.loop.runFor(turn / 4);
        ASSERT_TRUE(everythingLetGo()) << opening;
        ASSERT_EQ(machine.loop.timers(), timers) << opening;
    }
    EXPECT_EQ(lines("remedy").size(), static_cast<std::size_t>(fixes));
    EXPECT_EQ(lines("keep").size(), static_cast<std::size_t>(kept));
    EXPECT_EQ(lines("confirm").size(), static_cast<std::size_t>(fixes + noes));
    EXPECT_EQ(fixes, 100);
    EXPECT_GE(lines("tick").size(), 5700u);
    const int told = changes;
    machine.loop.runFor(60);
    EXPECT_EQ(changes, told);
}

}  // namespace ravik
