#include "Core/Screens/DiagnosisModel.h"

#include <deque>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "Core/Diagnosis/KeepList.h"
#include "Tests/Fakes/FakeAsker.h"
#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik {

namespace {

using fakes::FakeMachine;
using fakes::FakeProcess;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Mode = DiagnosisState::Mode;
using State = DiagnosisScreen::State;

constexpr std::uint64_t mib = 1ull << 20;

/// Lets its questions stand until they are answered.
class SlowAsker : public Asker {
public:
    Task<bool> ask(const Confirmation& question) override {
        titles.push_back(question.title);
        co_return co_await Callback<bool>([this](Callback<bool>::Resume resume) { open.push_back(std::move(resume)); });
    }
    void answer(std::size_t at, bool yes) { std::exchange(open.at(at), {})(yes); }
    /// No question is left standing: who asked it would never end.
    void leave() {
        for (std::size_t at = 0; at < open.size(); ++at) {
            if (open[at]) answer(at, false);
        }
    }

    std::vector<std::string> titles;
    std::vector<Callback<bool>::Resume> open;
};

class DiagnosisModelTest : public testing::Test {
protected:
    DiagnosisModelTest() { machine.clock.advance(100000); }
    void TearDown() override { slow.leave(); }

    /// A program that has lost its terminal.
    FakeProcess& orphan(Pid pid, const std::string& name, std::uint64_t megabytes = 100) {
        FakeProcess process;
        process.pid = pid;
        process.name = name;
        process.command = "/tmp/" + name;
        process.started = machine.clock.now() - 7200;
        process.footprintBytes = megabytes * mib;
        return machine.processes.add(process);
    }
    /// What an ended AI session left: all of it is one finding.
    FakeProcess& leftover(Pid pid, std::uint64_t megabytes = 100) {
        FakeProcess& process = orphan(pid, "node", megabytes);
        process.command = "/tmp/mcp-server-" + std::to_string(pid);
        return process;
    }
    void threeOrphans() {
        orphan(800, "big", 300);
        orphan(801, "middle", 200);
        orphan(802, "small", 100);
    }

    Monitor& monitor() {
        if (!m_monitor) {
            m_monitor =
                std::make_unique<Monitor>(machine.platform, logFolder.log, machine.host, Monitor::Role::watcher);
            m_monitor->readNow();
        }
        return *m_monitor;
    }
    void make(Asker& answers) {
        model = std::make_unique<DiagnosisModel>(monitor(), actions.emplace_back(monitor(), answers), [this] { ++disksOpened; });
    }
    DiagnosisModel& made() {
        if (!model) make(asker);
        return *model;
    }
    void tick() {
        machine.clock.advance(5);
        monitor().readNow();
    }
    void letRun() { machine.loop.runFor(20); }

    const DiagnosisScreen& screen() { return made().screen(); }
    std::vector<std::string> cards() { return screen().cardIds(); }

    FakeMachine machine;
    fakes::LogFolder logFolder{machine.clock};
    fakes::FakeAsker asker;
    SlowAsker slow;
    int disksOpened = 0;

private:
    std::unique_ptr<Monitor> m_monitor;

protected:
    /// They outlive the questions that stand.
    std::deque<Actions> actions;
    std::unique_ptr<DiagnosisModel> model;
};

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

TEST_F(DiagnosisModelTest, TheSelectionOutlivesTicksAndMovesToTheNeighbour) {
    threeOrphans();
    made().select("orphan:801");
    tick();
    EXPECT_EQ(model->state().selected, "orphan:801");
    machine.processes.end(801);
    tick();
    EXPECT_EQ(model->state().selected, "orphan:802");
    machine.processes.end(802);
    tick();
    EXPECT_EQ(model->state().selected, "orphan:800");
    machine.processes.end(800);
    tick();
    EXPECT_FALSE(model->state().selected.has_value());
}

TEST_F(DiagnosisModelTest, TheChordRunsTheSelectedCardAndTheSelectionGoesOn) {
    threeOrphans();
    made().runSelected();
    EXPECT_THAT(asker.asked, IsEmpty());
    model->select("orphan:800");
    model->runSelected();
    letRun();
    EXPECT_FALSE(machine.processes.find(800));
    EXPECT_EQ(model->state().selected, "orphan:801");
}

TEST_F(DiagnosisModelTest, TheChordRunsNothingThatTheMapHides) {
    threeOrphans();
    made().select("orphan:800");
    model->setMode(Mode::map);
    model->runSelected();
    EXPECT_THAT(asker.asked, IsEmpty());
    model->setMode(Mode::cards);
    EXPECT_EQ(model->state().selected, "orphan:800");
}

TEST_F(DiagnosisModelTest, KeysMoveTheSelectionAndStopAtTheEnds) {
    threeOrphans();
    made().selectNext();
    EXPECT_EQ(model->state().selected, "orphan:800");
    model->selectPrevious();
    EXPECT_EQ(model->state().selected, "orphan:800");
    model->selectNext();
    model->selectNext();
    model->selectNext();
    EXPECT_EQ(model->state().selected, "orphan:802");
    model->select("nobody");
    EXPECT_EQ(model->state().selected, "orphan:802");
    model->select({});
    EXPECT_FALSE(model->state().selected.has_value());
}

TEST_F(DiagnosisModelTest, CardsKeepTheirOrderWhileOneIsSelectedOrUnderThePointer) {
    threeOrphans();
    made().select("orphan:800");
    machine.processes.find(802)->footprintBytes = 900 * mib;
    orphan(803, "new", 500);
    tick();
    EXPECT_THAT(cards(), ElementsAre("orphan:800", "orphan:801", "orphan:802", "orphan:803"));
    model->setPointerOver(true);
    model->select({});
    tick();
    EXPECT_THAT(cards(), ElementsAre("orphan:800", "orphan:801", "orphan:802", "orphan:803"));
    model->setPointerOver(false);
    tick();
    EXPECT_THAT(cards(), ElementsAre("orphan:802", "orphan:803", "orphan:800", "orphan:801"));
}

TEST_F(DiagnosisModelTest, TheModeIsStored) {
    made();
    EXPECT_EQ(model->state().mode, Mode::cards);
    model->setMode(Mode::map);
    EXPECT_EQ(machine.defaults.values.at("diagnosisMode"), "Map");
    make(asker);
    EXPECT_EQ(model->state().mode, Mode::map);
    model->setMode(Mode::cards);
    EXPECT_EQ(machine.defaults.values.at("diagnosisMode"), "Cards");
}

TEST_F(DiagnosisModelTest, AStoredModeThatIsNoneCountsAsAbsent) {
    for (const nlohmann::json& bad : {nlohmann::json("List"), nlohmann::json(1)}) {
        machine.defaults.values["diagnosisMode"] = bad;
        make(asker);
        EXPECT_EQ(model->state().mode, Mode::cards);
    }
}

TEST_F(DiagnosisModelTest, TheMapIsMadeOnlyWhereItIsShown) {
    threeOrphans();
    EXPECT_TRUE(made().map().accessible.empty());
    model->setMode(Mode::map);
    EXPECT_FALSE(model->map().arcs.empty());
    EXPECT_TRUE(cards().empty());
    model->setMode(Mode::cards);
    EXPECT_EQ(model->map(), MapScreen());
}

TEST_F(DiagnosisModelTest, ArcsAreSelectedRoundAndRound) {
    orphan(800, "big", 4000);
    orphan(801, "middle", 2000);
    made().setMode(Mode::map);
    ASSERT_THAT(model->map().arcIds(), ElementsAre("big", "middle"));
    model->selectNextArc();
    EXPECT_EQ(model->map().panel.name, "big");
    model->selectPreviousArc();
    EXPECT_EQ(model->map().panel.name, "middle");
    model->selectNextArc();
    EXPECT_EQ(model->map().panel.name, "big");
    machine.processes.end(800);
    tick();
    EXPECT_EQ(model->map().panel.name, "middle");
    model->selectArc("nobody");
    EXPECT_EQ(model->map().panel.name, "middle");
    model->selectArc({});
    EXPECT_FALSE(model->map().panel.hasArc);
}

TEST_F(DiagnosisModelTest, ASelectedArcHoldsTheRing) {
    orphan(800, "big", 4000);
    orphan(801, "middle", 2000);
    made().setMode(Mode::map);
    model->selectArc("big");
    machine.processes.find(801)->footprintBytes = 6000 * mib;
    tick();
    EXPECT_THAT(model->map().arcIds(), ElementsAre("big", "middle"));
    model->selectArc({});
    EXPECT_THAT(model->map().arcIds(), ElementsAre("middle", "big"));
}

TEST_F(DiagnosisModelTest, AnOpenSheetFollowsTheMachineUntilItsFindingHasGone) {
    threeOrphans();
    made().openEvidence("orphan:800");
    ASSERT_TRUE(model->evidence());
    EXPECT_EQ(model->evidence()->name, "big");
    machine.processes.find(800)->footprintBytes = 350 * mib;
    tick();
    const auto& rows = model->evidence()->rows;
    const auto tree = std::ranges::find(rows, "Tree", &EvidenceScreen::Row::label);
    ASSERT_NE(tree, rows.end());
    EXPECT_EQ(tree->tree.at(0).mb, "350\u00a0MB");
    machine.processes.end(800);
    tick();
    EXPECT_TRUE(model->evidence()->isGone);
    model->closeEvidence();
    EXPECT_FALSE(model->evidence().has_value());
}

TEST_F(DiagnosisModelTest, TheSelectedCardOpensItsSheet) {
    threeOrphans();
    made().openSelectedEvidence();
    EXPECT_FALSE(model->evidence().has_value());
    model->select("orphan:801");
    model->openSelectedEvidence();
    ASSERT_TRUE(model->evidence());
    EXPECT_EQ(model->evidence()->id, "orphan:801");
    model->closeEvidence();
    model->setMode(Mode::map);
    model->openSelectedEvidence();
    EXPECT_FALSE(model->evidence().has_value());
}

TEST_F(DiagnosisModelTest, KeepingLeavesTheProgramRunningFromTheNextTickOn) {
    orphan(800, "big").command = "/tmp/big " + std::string(300, 'x');
    made();
    EXPECT_FALSE(model->keep());
    model->openEvidence("orphan:800");
    EXPECT_TRUE(model->keep());
    EXPECT_THAT(KeepList(machine.defaults).sorted(), ElementsAre("/tmp/big " + std::string(300, 'x')));
    machine.loop.settle();
    EXPECT_EQ(screen().sections.at(0).heading, "Left alone");
    EXPECT_EQ(screen().sections.at(0).cards.at(0).sentence, "You asked Ravik to keep this running.");
    EXPECT_FALSE(model->evidence()->keep->isEnabled);
    EXPECT_FALSE(model->keep());
    const auto lines = logFolder.lines("keep");
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(lines[0]["cmd"].get<std::string>().size(), 160u);
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
