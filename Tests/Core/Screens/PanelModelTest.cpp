#include "Core/Screens/PanelModel.h"

#include <gtest/gtest.h>

#include "Core/Diagnosis/KeepList.h"
#include "Tests/Core/Screens/PanelDesk.h"

namespace ravik {

namespace {

using namespace fakes;
using nlohmann::json;

struct PanelModelTest : testing::Test, protected PanelDesk {};

}  // namespace

TEST_F(PanelModelTest, FollowsTheMonitorFromPendingToFindings) {
    open();
    EXPECT_EQ(screen().middle, PanelScreen::Middle::pending);
    EXPECT_EQ(screen().title, "Reading your computer…");
    orphan(200);
    tick();
    EXPECT_EQ(screen().middle, PanelScreen::Middle::findings);
    EXPECT_EQ(screen().hero.spoken(), "100 MB");
    EXPECT_EQ(rowIds(), Ids{"orphan:200"});
    EXPECT_GT(changes, 0);
}

TEST_F(PanelModelTest, ATickIsToldOnce) {
    orphan(200);
    tick();
    open();
    for (int ticks = 1; ticks <= 5; ++ticks) {
        tick();
        EXPECT_EQ(changes, 5 * ticks);  // 1 s to 4 s, and the tick
    }
}

TEST_F(PanelModelTest, WhatIsNotSeenIsNotTold) {
    orphan(200);
    tick();
    open();
    monitor->setInterval(monitor->interval());
    monitor->setThresholds(monitor->thresholds());
    settle();
    EXPECT_EQ(changes, 0);
    monitor->setInterval(10);
    settle();
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(screen().header.tooltip.ends_with("Ravik reads your computer every 10 s"));
}

TEST_F(PanelModelTest, TheClockIsLookedAtOnlyWhenATextChanges) {
    tick();
    open();
    const std::size_t alone = machine.loop.timers();
    machine.loop.runFor(600.5);
    // 1 s to 59 s, then 1 min to 10 min
    EXPECT_EQ(changes, 69);
    EXPECT_EQ(screen().header.checked, "checked 10 min ago");
    EXPECT_EQ(machine.loop.timers(), alone);
    machine.loop.runFor(30);
    EXPECT_EQ(changes, 69);
    close();
    EXPECT_EQ(machine.loop.timers(), alone - 1);
}

TEST_F(PanelModelTest, TheWeekIsReadWhenThePanelOpens) {
    orphan(200);
    tick();
    open();
    EXPECT_EQ(screen().week, std::nullopt);
    model->run("orphan:200");
    settle();
    close();
    lines("remedy");
    open();
    EXPECT_EQ(screen().week, std::nullopt);
    settle();
    EXPECT_EQ(screen().week, "This week: 1 fix · 100 MB given back");
}

TEST_F(PanelModelTest, AFixBecomesAResolvedRow) {
    orphan(200);
    orphan(201);
    tick();
    open();
    const IconRef icon = screen().rows.at(0).icon;
    const std::string id = screen().rows[0].id;
    model->run(id);
    settle();
    ASSERT_EQ(screen().rows.size(), 2u);
    EXPECT_EQ(screen().rows[0].id, id);
    ASSERT_TRUE(screen().rows[0].resolved);
    EXPECT_EQ(screen().rows[0].resolved->symbol, "checkmark.circle.fill");
    EXPECT_EQ(screen().rows[0].sentence, "1 ended · 0 survivors · 100\u00a0MB");
    EXPECT_EQ(screen().rows[0].icon, icon);
    EXPECT_FALSE(screen().rows[1].resolved);
    EXPECT_EQ(screen().result, std::nullopt);
}

TEST_F(PanelModelTest, AFixThatFailedIsMarkedSo) {
    orphan(200).ignoresTerm = true;
    machine.processes.find(200)->ignoresKill = true;
    tick();
    open();
    model->run("orphan:200");
    settle();
    ASSERT_TRUE(screen().rows.at(0).resolved);
    EXPECT_EQ(screen().rows[0].resolved->symbol, "exclamationmark.circle");
    EXPECT_EQ(screen().rows[0].sentence, "0 ended · 1 survivor: server (pid 200) did not exit after KILL");
    // It stands as resolved while the panel is open, though the machine still has it.
    ASSERT_EQ(monitor->snapshot().findings.size(), 1u);
    model->run("orphan:200");
    EXPECT_EQ(asker.asked.size(), 1u);
}

TEST_F(PanelModelTest, ANoChangesNothing) {
    orphan(200);
    tick();
    open();
    const PanelScreen before = screen();
    asker.held = false;
    asker.answer = false;
    model->run("orphan:200");
    settle();
    model->free();
    settle();
    EXPECT_EQ(screen(), before);
    EXPECT_TRUE(machine.processes.sent.empty());
    EXPECT_EQ(lines("confirm").size(), 2u);
    EXPECT_EQ(lines("fixAll").at(0)["cancelled"], true);
}

TEST_F(PanelModelTest, AsksAboutTheNewestPicture) {
    leftover(200);
    tick();
    open();
    leftover(201);
    tick();
    model->run("leftovers");
    EXPECT_EQ(asker.asked.at(0).verb, "End 2 programs");
}

TEST_F(PanelModelTest, WhatHasGoneSinceIsNotAskedAbout) {
    orphan(200);
    tick();
    open();
    machine.processes.end(200);
    tick();
    model->run("orphan:200");
    model->run("nonsense");
    model->free();
    settle();
    EXPECT_TRUE(asker.asked.empty());
}

TEST_F(PanelModelTest, WhatHasNoButtonRunsNothing) {
    orphan(200, "postgres");
    tick();
    open();
    ASSERT_EQ(rowIds(), Ids{"db:200"});
    model->run("db:200");
    settle();
    EXPECT_TRUE(asker.asked.empty());
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(PanelModelTest, FreeSaysItRunsOnlyOnceTheUserHasSaidYes) {
    leftover(200);
    orphan(201);
    tick();
    open();
    asker.held = true;
    model->free();
    settle();
    EXPECT_EQ(screen().free.label, "Free 200\u00a0MB");
    machine.loop.holdBackground = true;
    asker.say(true);
    settle();
    EXPECT_EQ(screen().free.label, "Ending 2 processes…");
    EXPECT_FALSE(screen().free.isEnabled);
    EXPECT_FALSE(screen().rows.at(0).isEnabled);
    machine.loop.holdBackground = false;
    settle();
    EXPECT_EQ(screen().free.label, "Nothing to free");
    EXPECT_EQ(screen().result, "2 ended · 0 survivors · 200\u00a0MB");
    EXPECT_EQ(screen().middle, PanelScreen::Middle::findings);
}

TEST_F(PanelModelTest, NothingRunsTwice) {
    orphan(200);
    orphan(201);
    tick();
    open();
    asker.held = true;
    model->run("orphan:200");
    model->run("orphan:200");
    model->run("orphan:201");
    model->free();
    EXPECT_EQ(asker.asked.size(), 1u);
    machine.loop.holdBackground = true;
    asker.say(true);
    settle();
    model->run("orphan:200");
    EXPECT_EQ(asker.asked.size(), 1u);
    EXPECT_FALSE(row("orphan:200").isEnabled);
    EXPECT_TRUE(row("orphan:201").isEnabled);
    machine.loop.holdBackground = false;
    settle();
    model->run("orphan:200");
    EXPECT_EQ(asker.asked.size(), 1u);

    model->free();
    model->free();
    model->run("orphan:201");
    EXPECT_EQ(asker.asked.size(), 2u);
    machine.loop.holdBackground = true;
    asker.say(true);
    model->free();
    model->run("orphan:201");
    EXPECT_EQ(asker.asked.size(), 2u);
    machine.loop.holdBackground = false;
    settle();
    EXPECT_EQ(lines("remedy").size(), 2u);
    EXPECT_EQ(lines("fixAll").size(), 1u);
}

TEST_F(PanelModelTest, OneMoreFixCanBeginWhileAnApplicationTakesItsTimeToQuit) {
    application(300, "Firefox", 5000).started -= 86400;
    orphan(200);
    machine.workspace.apps.push_back({{"Firefox", "Firefox", 300}, 20});
    tick();
    open();
    ASSERT_EQ(rowIds(), (Ids{"browser:Firefox", "orphan:200"}));
    model->run("browser:Firefox");
    machine.loop.runFor(2);
    model->run("orphan:200");
    machine.loop.runFor(4);
    ASSERT_TRUE(screen().rows.at(0).resolved);
    EXPECT_EQ(screen().rows[0].id, "orphan:200");
    EXPECT_FALSE(row("browser:Firefox").isEnabled);
    machine.loop.runFor(30);
    EXPECT_EQ(screen().rows.at(1).id, "browser:Firefox");
    EXPECT_TRUE(screen().rows[1].resolved);
}

TEST_F(PanelModelTest, KeepsAProgramByItsWholeCommandLine) {
    const std::string command = "/tmp/server " + std::string(200, 'x');
    orphan(200).command = command;
    tick();
    open();
    ASSERT_TRUE(screen().rows.at(0).hasKeep);
    model->keep("orphan:200");
    EXPECT_TRUE(KeepList(machine.defaults).commands().contains(command));
    EXPECT_EQ(lines("keep").at(0)["cmd"], command.substr(0, 160));
    settle();
    EXPECT_EQ(screen().rows.at(0).sentence, "You asked Ravik to keep this running.");
    EXPECT_FALSE(screen().rows[0].hasKeep);
    EXPECT_EQ(screen().rows[0].button, std::nullopt);
    model->keep("orphan:200");
    model->keep("nonsense");
    EXPECT_EQ(lines("keep").size(), 1u);
}

TEST_F(PanelModelTest, KeepingIsLoggedOnceHoweverOftenItIsPressed) {
    orphan(200);
    tick();
    open();
    model->keep("orphan:200");
    model->keep("orphan:200");
    EXPECT_EQ(lines("keep").size(), 1u);
}

TEST_F(PanelModelTest, AKeepThatCannotBeStoredIsSaidInItsRow) {
    orphan(200);
    orphan(201, "other");
    tick();
    open();
    machine.defaults.isReadOnly = true;
    model->keep("orphan:200");
    settle();
    EXPECT_EQ(row("orphan:200").keepNote, "Ravik could not store that, so it is not on your Keep list.");
    EXPECT_EQ(row("orphan:201").keepNote, "");
    EXPECT_TRUE(lines("keep").empty());
    machine.defaults.isReadOnly = false;
    model->keep("orphan:200");
    settle();
    EXPECT_EQ(row("orphan:200").keepNote, "");
    EXPECT_EQ(lines("keep").size(), 1u);
}

TEST_F(PanelModelTest, ANewFirstFindingIsSeenWhileThePointerRestsOnTheRows) {
    orphan(200, "a", 400);
    orphan(201, "b", 300);
    orphan(202, "c", 200);
    tick();
    open();
    model->holdRows(true);
    model->pointAt("orphan:202", true);
    settle();
    orphan(203, "d", 900);
    tick();
    EXPECT_EQ(rowIds(), (Ids{"orphan:200", "orphan:203", "orphan:202"})) << "the row under the pointer stays";
    tick();
    EXPECT_EQ(rowIds(), (Ids{"orphan:200", "orphan:203", "orphan:202"}));
    model->pointAt("orphan:200", true);
    model->pointAt("orphan:202", false);
    tick();
    EXPECT_EQ(rowIds(), (Ids{"orphan:200", "orphan:203", "orphan:201"}));
    model->holdRows(false);
    settle();
    EXPECT_EQ(rowIds(), (Ids{"orphan:203", "orphan:200", "orphan:201"}));
}

TEST_F(PanelModelTest, AcceptsASuggestionAndUndoesIt) {
    suggestFoo();
    open();
    ASSERT_EQ(screen().suggestions.size(), 1u);
    EXPECT_EQ(screen().suggestions[0].title, "pause Foo");
    model->accept(screen().suggestions[0].id);
    settle();
    EXPECT_TRUE(machine.processes.find(60)->stopped);
    EXPECT_TRUE(screen().suggestions.empty());
    ASSERT_EQ(screen().live.size(), 1u);
    EXPECT_EQ(screen().live[0].word, "Paused");
    EXPECT_EQ(screen().live[0].timeLeft, "10 minutes left");
    EXPECT_EQ(screen().autopilotLine, "");
    machine.loop.runFor(60.5);
    EXPECT_EQ(screen().live.at(0).timeLeft, "9 minutes left");
    model->undo(screen().live[0].id);
    settle();
    EXPECT_FALSE(machine.processes.find(60)->stopped);
    EXPECT_TRUE(screen().live.empty());
    EXPECT_EQ(screen().autopilotLine, "Autopilot is learning — not acting yet");
    EXPECT_EQ(lines("suggestionAccepted").size(), 1u);
    EXPECT_EQ(lines("autopilotRelease").at(0)["why"], "undo");
}

TEST_F(PanelModelTest, DismissesASuggestion) {
    suggestFoo();
    open();
    const std::string id = screen().suggestions.at(0).id;
    model->dismiss(id);
    settle();
    EXPECT_TRUE(screen().suggestions.empty());
    model->dismiss(id);
    model->accept(id);
    EXPECT_EQ(lines("suggestionDismissed").size(), 1u);
    EXPECT_TRUE(lines("suggestionAccepted").empty());
}

TEST_F(PanelModelTest, BuildsTheFeedbackBundleOnceAtATime) {
    tick();
    open();
    model->sendFeedback();
    model->sendFeedback();
    settle();
    EXPECT_EQ(screen().footer.feedback, "Building the bundle…");
    EXPECT_EQ(bundles.size(), 1u);
    bundles.front()("Saved to the Desktop");
    settle();
    EXPECT_EQ(screen().footer.feedback, "Saved to the Desktop");
    model->sendFeedback();
    EXPECT_EQ(bundles.size(), 2u);
    bundles.back()("Could not create the feedback bundle: no room");
    settle();
    EXPECT_EQ(screen().footer.feedback, "Could not create the feedback bundle: no room");
}

TEST_F(PanelModelTest, RowsKeepTheirOrderWhileTheUserPointsAtThem) {
    orphan(200, "a", 300);
    orphan(201, "b", 200);
    tick();
    open();
    ASSERT_EQ(rowIds(), (Ids{"orphan:200", "orphan:201"}));
    model->holdRows(true);
    machine.processes.find(201)->footprintBytes = 400 << 20;
    orphan(202, "c", 900);
    tick();
    EXPECT_EQ(rowIds(), (Ids{"orphan:200", "orphan:201", "orphan:202"}));
    EXPECT_EQ(screen().rows.at(1).amount, "400\u00a0MB");
    model->holdRows(false);
    settle();
    EXPECT_EQ(rowIds(), (Ids{"orphan:202", "orphan:201", "orphan:200"}));
}

}  // namespace ravik
