#include "Tests/Core/Screens/DiagnosisDesk.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace ravik {

namespace {

using fakes::FakeProcess;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using State = DiagnosisScreen::State;

constexpr std::uint64_t mib = 1ull << 20;

class DiagnosisModelTest : public fakes::DiagnosisDesk {};

}  // namespace

TEST_F(DiagnosisModelTest, WaitsForTheFirstReading) {
    Monitor unread(machine.platform, logFolder.log, machine.host, Monitor::Role::reader);
    Actions of(unread, asker);
    DiagnosisModel waiting(unread, of, {});
    EXPECT_EQ(waiting.screen().state, State::waiting);
    unread.readNow();
    EXPECT_EQ(waiting.screen().state, State::calm);
}

TEST_F(DiagnosisModelTest, AnEndedCardLeavesItsOutcome) {
    threeOrphans();
    made();
    asker.whileAsked = [&] {
        EXPECT_EQ(model->state().running, "Ending middle…");
        EXPECT_THAT(model->state().ending, ElementsAre("orphan:801"));
        EXPECT_EQ(screen().hero.line, "Ending middle…");
        EXPECT_FALSE(screen().free.isEnabled);
    };
    model->run("orphan:801");
    letRun();
    EXPECT_THAT(asker.asked, SizeIs(1));
    EXPECT_FALSE(machine.processes.find(801));
    EXPECT_FALSE(model->state().running.has_value());
    EXPECT_THAT(model->state().ending, IsEmpty());
    EXPECT_THAT(cards(), ElementsAre("orphan:800", "orphan:802"));
    ASSERT_THAT(screen().resolved, SizeIs(1));
    EXPECT_EQ(screen().resolved[0].name, "middle");
    EXPECT_EQ(screen().resolved[0].line, "1 ended · 0 survivors · 200\u00a0MB");
    EXPECT_EQ(screen().resolved[0].face.colour, Colour::safe);
}

TEST_F(DiagnosisModelTest, ACancelledRunLeavesNothingBehind) {
    threeOrphans();
    asker.answer = false;
    const DiagnosisScreen before = made().screen();
    model->run("orphan:801");
    letRun();
    EXPECT_THAT(asker.asked, SizeIs(1));
    EXPECT_EQ(model->screen(), before);
    EXPECT_TRUE(machine.processes.find(801));
}

TEST_F(DiagnosisModelTest, AFailedEndingIsInTheCautionColour) {
    orphan(800, "big").ignoresKill = true;
    machine.processes.find(800)->ignoresTerm = true;
    made().run("orphan:800");
    letRun();
    ASSERT_THAT(screen().resolved, SizeIs(1));
    EXPECT_EQ(screen().resolved[0].line, "0 ended · 1 survivor: big (pid 800) did not exit after KILL");
    EXPECT_EQ(screen().resolved[0].face.colour, Colour::caution);
}

TEST_F(DiagnosisModelTest, WhatMayNoLongerBeEndedIsLeftRunningAndSaysWhy) {
    orphan(800, "big");
    made();
    asker.whileAsked = [&] {
        FakeProcess child;
        child.pid = 801;
        child.ppid = 800;
        child.name = "postgres";
        child.command = "/tmp/postgres";
        machine.processes.add(child);
        tick();
    };
    model->run("orphan:800");
    letRun();
    EXPECT_TRUE(machine.processes.find(800));
    ASSERT_THAT(screen().resolved, SizeIs(1));
    EXPECT_THAT(screen().resolved[0].line, testing::StartsWith("Left running: "));
    EXPECT_EQ(screen().resolved[0].face.colour, Colour::caution);
    EXPECT_FALSE(monitor().lastFix().has_value());
}

TEST_F(DiagnosisModelTest, AFailedEndingStandsForItsCardAsLongAsNothingNewJoins) {
    orphan(800, "big").ignoresKill = true;
    machine.processes.find(800)->ignoresTerm = true;
    made().run("orphan:800");
    letRun();
    tick();
    EXPECT_THAT(cards(), IsEmpty());
    EXPECT_THAT(screen().resolved, SizeIs(1));
}

TEST_F(DiagnosisModelTest, AFullDiskOpensTheDiskScreenAndThatIsAll) {
    machine.readings.diskFree = 1ull << 30;
    const DiagnosisScreen before = made().screen();
    model->run("disk");
    letRun();
    EXPECT_EQ(disksOpened, 1);
    EXPECT_EQ(model->screen(), before);
    EXPECT_THAT(asker.asked, IsEmpty());
}

TEST_F(DiagnosisModelTest, WhatHasNoButtonOrHasGoneRunsNothing) {
    orphan(800, "postgres");
    made();
    ASSERT_THAT(cards(), ElementsAre("db:800"));
    const DiagnosisScreen before = model->screen();
    model->run("db:800");
    model->run("orphan:4711");
    letRun();
    EXPECT_THAT(asker.asked, IsEmpty());
    EXPECT_EQ(model->screen(), before);
}

TEST_F(DiagnosisModelTest, OneFindingNeverRunsTwiceAtATime) {
    threeOrphans();
    make(slow);
    model->run("orphan:801");
    model->run("orphan:801");
    EXPECT_THAT(slow.titles, ElementsAre("End middle?"));
    model->free();
    EXPECT_THAT(slow.titles, SizeIs(1));
    slow.answer(0, false);
    model->run("orphan:801");
    EXPECT_THAT(slow.titles, SizeIs(2));
}

TEST_F(DiagnosisModelTest, OfTwoActionsTheLineTellsOfTheLaterAndThenOfTheOther) {
    threeOrphans();
    make(slow);
    model->run("orphan:800");
    model->run("orphan:801");
    EXPECT_EQ(model->state().running, "Ending middle…");
    EXPECT_THAT(model->state().ending, ElementsAre("orphan:800", "orphan:801"));
    slow.answer(1, false);
    EXPECT_EQ(model->state().running, "Ending big…");
    EXPECT_THAT(model->state().ending, ElementsAre("orphan:800"));
}

TEST_F(DiagnosisModelTest, FreeEndsWhatIsSafeAndSaysSo) {
    threeOrphans();
    made();
    asker.whileAsked = [&] {
        EXPECT_EQ(model->state().running, "Ending 3 processes");
        EXPECT_EQ(screen().free.label, "Ending 3 processes");
        EXPECT_TRUE(screen().free.isBusy);
        EXPECT_THAT(model->state().ending, ElementsAre("orphan:800", "orphan:801", "orphan:802"));
    };
    model->free();
    letRun();
    EXPECT_EQ(screen().hero.line, "3 ended · 0 survivors · 600\u00a0MB");
    EXPECT_FALSE(model->state().running.has_value());
    EXPECT_THAT(model->state().ending, IsEmpty());
    ASSERT_THAT(screen().resolved, SizeIs(3));
    EXPECT_EQ(screen().resolved[0].name, "big");
    EXPECT_EQ(screen().resolved[0].line, "Ended with Free");
    EXPECT_EQ(screen().free.label, "Nothing to free");
    tick();
    EXPECT_THAT(screen().resolved, SizeIs(3));
}

TEST_F(DiagnosisModelTest, ACancelledFreeClearsWhatRunsAndNothingElse) {
    threeOrphans();
    made().run("orphan:800");
    letRun();
    asker.answer = false;
    const DiagnosisScreen before = model->screen();
    model->free();
    letRun();
    EXPECT_EQ(model->screen(), before);
    EXPECT_TRUE(machine.processes.find(801));
}

TEST_F(DiagnosisModelTest, WithNothingToFreeNothingIsAsked) {
    made().free();
    EXPECT_THAT(asker.asked, IsEmpty());
    EXPECT_FALSE(model->state().running.has_value());
}

TEST_F(DiagnosisModelTest, WhatSurvivesFreeKeepsItsLineUntilTheNextActionAndGetsItsCardBack) {
    threeOrphans();
    machine.processes.find(801)->ignoresTerm = true;
    machine.processes.find(801)->ignoresKill = true;
    made().free();
    letRun();
    const std::string line = "2 ended · 1 survivor: middle (pid 801) did not exit after KILL";
    EXPECT_EQ(screen().hero.line, line);
    tick();
    EXPECT_EQ(screen().hero.line, line);
    EXPECT_THAT(cards(), ElementsAre("orphan:801"));
    ASSERT_THAT(screen().resolved, SizeIs(2));
    EXPECT_EQ(screen().resolved[1].name, "small");

    asker.answer = false;
    model->run("orphan:801");
    letRun();
    EXPECT_EQ(screen().hero.line, line);
    asker.answer = true;
    model->run("orphan:801");
    letRun();
    EXPECT_EQ(screen().hero.line, "Only what is safe. You confirm first.");
    EXPECT_THAT(cards(), IsEmpty());
}

TEST_F(DiagnosisModelTest, WhatFreeWasRefusedIsNotSaidToHaveEnded) {
    threeOrphans();
    made();
    asker.whileAsked = [&] {
        FakeProcess child;
        child.pid = 803;
        child.ppid = 801;
        child.name = "postgres";
        child.command = "/tmp/postgres";
        machine.processes.add(child);
    };
    model->free();
    letRun();
    EXPECT_TRUE(machine.processes.find(801));
    tick();
    EXPECT_THAT(cards(), ElementsAre("orphan:801"));
    EXPECT_EQ(screen().sections.at(0).heading, "Left alone");
    ASSERT_THAT(screen().resolved, SizeIs(2));
    EXPECT_EQ(screen().resolved[0].name, "big");
    EXPECT_EQ(screen().resolved[1].name, "small");
}

TEST_F(DiagnosisModelTest, WithoutADiskScreenAFullDiskLeadsNowhere) {
    machine.readings.diskFree = 1ull << 30;
    Actions of(monitor(), asker);
    DiagnosisModel here(monitor(), of, {});
    ASSERT_THAT(here.screen().cardIds(), ElementsAre("disk"));
    EXPECT_FALSE(here.screen().sections[0].cards[0].opensDisk);
    EXPECT_TRUE(made().screen().sections.at(0).cards.at(0).opensDisk);
}

TEST_F(DiagnosisModelTest, ACauseThatComesBackHasACardAgain) {
    leftover(800);
    made().run("leftovers");
    letRun();
    tick();
    EXPECT_THAT(cards(), IsEmpty());
    leftover(801);
    tick();
    EXPECT_THAT(cards(), ElementsAre("leftovers"));
    EXPECT_THAT(screen().resolved, SizeIs(1));
}

TEST_F(DiagnosisModelTest, ACauseThatFindsNewProcessesHasACardAgain) {
    leftover(800);
    made();
    asker.whileAsked = [&] { leftover(801); };
    model->run("leftovers");
    letRun();
    tick();
    EXPECT_THAT(cards(), ElementsAre("leftovers"));
}

TEST_F(DiagnosisModelTest, AnActionOutlivesTheScreen) {
    threeOrphans();
    make(slow);
    model->run("orphan:801");
    model->free();
    model.reset();
    slow.answer(0, true);
    letRun();
    EXPECT_FALSE(machine.processes.find(801));
    EXPECT_EQ(monitor().lastFix()->line, "1 ended · 0 survivors · 200\u00a0MB");
}

TEST_F(DiagnosisModelTest, FreeOutlivesTheScreenAsWell) {
    threeOrphans();
    make(slow);
    model->free();
    model.reset();
    slow.answer(0, true);
    letRun();
    EXPECT_EQ(monitor().lastFix()->line, "3 ended · 0 survivors · 600\u00a0MB");
}

TEST_F(DiagnosisModelTest, TheObserverHearsOfDifferencesAlone) {
    threeOrphans();
    int changes = 0;
    made().onChange([&] { ++changes; });
    monitor().readNow();
    EXPECT_EQ(changes, 0);
    model->select("orphan:801");
    EXPECT_EQ(changes, 1);
    machine.processes.find(800)->footprintBytes += 50 * mib;
    monitor().readNow();
    EXPECT_EQ(changes, 2);
}

TEST_F(DiagnosisModelTest, TheObserverMayDestroyTheModel) {
    threeOrphans();
    for (const bool free : {true, false}) {
        make(slow);
        model->onChange([&] { model.reset(); });
        free ? model->free() : model->run("orphan:800");
        EXPECT_FALSE(model);
        EXPECT_THAT(slow.open, SizeIs(free ? 1 : 2));
    }
    make(asker);
    model->onChange([&] { model.reset(); });
    machine.processes.end(801);
    tick();
    EXPECT_FALSE(model);
}

TEST_F(DiagnosisModelTest, SaysThatAlertsAreOff) {
    threeOrphans();
    made();
    machine.notifier.denied = true;
    monitor().checkNotifications();
    machine.loop.settle();
    EXPECT_EQ(screen().hero.line, "Alerts are off, so Ravik waits here until you look.");
}

TEST_F(DiagnosisModelTest, TheCalmNamesTheLastFix) {
    made();
    EXPECT_EQ(screen().calm.line, "Nothing to free. Ravik keeps watching.");
    monitor().recordFix("Arc quit · about 3,000\u00a0MB");
    EXPECT_EQ(screen().calm.line, "Nothing to free. Last fix: Arc quit · about 3,000\u00a0MB");
}

}  // namespace ravik
