#include "Tests/Core/Screens/DiagnosisDesk.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "Core/Diagnosis/KeepList.h"

namespace ravik {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Mode = DiagnosisState::Mode;

constexpr std::uint64_t mib = 1ull << 20;

class DiagnosisChoicesTest : public fakes::DiagnosisDesk {};

}  // namespace

TEST_F(DiagnosisChoicesTest, TheSelectionOutlivesTicksAndMovesToTheNeighbour) {
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

TEST_F(DiagnosisChoicesTest, TheChordRunsTheSelectedCardAndTheSelectionGoesOn) {
    threeOrphans();
    made().runSelected();
    EXPECT_THAT(asker.asked, IsEmpty());
    model->select("orphan:800");
    model->runSelected();
    letRun();
    EXPECT_FALSE(machine.processes.find(800));
    EXPECT_EQ(model->state().selected, "orphan:801");
}

TEST_F(DiagnosisChoicesTest, TheChordRunsNothingThatTheMapHides) {
    threeOrphans();
    made().select("orphan:800");
    model->setMode(Mode::map);
    model->runSelected();
    EXPECT_THAT(asker.asked, IsEmpty());
    model->setMode(Mode::cards);
    EXPECT_EQ(model->state().selected, "orphan:800");
}

TEST_F(DiagnosisChoicesTest, KeysMoveTheSelectionAndStopAtTheEnds) {
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

TEST_F(DiagnosisChoicesTest, CardsKeepTheirOrderWhileOneIsSelectedOrUnderThePointer) {
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

TEST_F(DiagnosisChoicesTest, TheModeIsStored) {
    made();
    EXPECT_EQ(model->state().mode, Mode::cards);
    model->setMode(Mode::map);
    EXPECT_EQ(machine.defaults.values.at("diagnosisMode"), "Map");
    make(asker);
    EXPECT_EQ(model->state().mode, Mode::map);
    model->setMode(Mode::cards);
    EXPECT_EQ(machine.defaults.values.at("diagnosisMode"), "Cards");
}

TEST_F(DiagnosisChoicesTest, AStoredModeThatIsNoneCountsAsAbsent) {
    for (const nlohmann::json& bad : {nlohmann::json("List"), nlohmann::json(1)}) {
        machine.defaults.values["diagnosisMode"] = bad;
        make(asker);
        EXPECT_EQ(model->state().mode, Mode::cards);
    }
}

TEST_F(DiagnosisChoicesTest, TheMapIsMadeOnlyWhereItIsShown) {
    threeOrphans();
    EXPECT_TRUE(made().map().accessible.empty());
    model->setMode(Mode::map);
    EXPECT_FALSE(model->map().arcs.empty());
    EXPECT_TRUE(cards().empty());
    model->setMode(Mode::cards);
    EXPECT_EQ(model->map(), MapScreen());
}

TEST_F(DiagnosisChoicesTest, ArcsAreSelectedRoundAndRound) {
    orphan(800, "big", 4000);
    orphan(801, "middle", 2000);
    made().setMode(Mode::map);
    ASSERT_THAT(model->map().arcIds(), ElementsAre("app:big", "app:middle"));
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

TEST_F(DiagnosisChoicesTest, ASelectedArcHoldsTheRing) {
    orphan(800, "big", 4000);
    orphan(801, "middle", 2000);
    made().setMode(Mode::map);
    model->selectArc("app:big");
    machine.processes.find(801)->footprintBytes = 6000 * mib;
    tick();
    EXPECT_THAT(model->map().arcIds(), ElementsAre("app:big", "app:middle"));
    model->selectArc({});
    EXPECT_THAT(model->map().arcIds(), ElementsAre("app:middle", "app:big"));
}

TEST_F(DiagnosisChoicesTest, AnOpenSheetFollowsTheMachineUntilItsFindingHasGone) {
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

TEST_F(DiagnosisChoicesTest, TheSelectedCardOpensItsSheet) {
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

TEST_F(DiagnosisChoicesTest, KeepingLeavesTheProgramRunningFromTheNextTickOn) {
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

TEST_F(DiagnosisChoicesTest, KeepingIsLoggedOnceHoweverOftenItIsPressed) {
    orphan(800, "big");
    made().openEvidence("orphan:800");
    EXPECT_TRUE(model->keep());
    EXPECT_TRUE(model->keep()) << "before the reading that shows it";
    EXPECT_THAT(logFolder.lines("keep"), SizeIs(1));
}

TEST_F(DiagnosisChoicesTest, AKeepThatCannotBeStoredIsSaid) {
    orphan(800, "big");
    orphan(801, "small");
    made().openEvidence("orphan:800");
    machine.defaults.isReadOnly = true;
    EXPECT_FALSE(model->keep());
    EXPECT_EQ(model->evidence()->keep->line, "Ravik could not store that, so it is not on your Keep list.");
    EXPECT_TRUE(model->evidence()->keep->hasFailed);
    EXPECT_TRUE(model->evidence()->keep->isEnabled);
    EXPECT_THAT(logFolder.lines("keep"), IsEmpty());
    tick();
    EXPECT_TRUE(model->evidence()->keep->hasFailed) << "until it is tried again";
    model->openEvidence("orphan:801");
    EXPECT_FALSE(model->evidence()->keep->hasFailed);
    model->openEvidence("orphan:800");
    EXPECT_FALSE(model->keep());
    machine.defaults.isReadOnly = false;
    EXPECT_TRUE(model->keep());
    machine.loop.settle();
    EXPECT_FALSE(model->evidence()->keep->hasFailed);
    EXPECT_FALSE(model->evidence()->keep->isEnabled);
}

}  // namespace ravik
