#include "Core/Screens/MapScreen.h"

#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;

namespace {

using Arc = MapScreen::Arc;
using Names = std::vector<std::string>;

Making app(Pid pid, const std::string& name) { return Making(pid, "/Applications/" + name + ".app/x"); }

struct Scene : Machine {
    std::vector<Finding> findings;
    DiagnosisState state;

    MapScreen map() const {
        const Cards cards(*this, findings);
        const ScreenInput input{cards.snapshot, cards.index, host, ram, now};
        return {input, DiagnosisScreen::picture(input), state};
    }
};

/// Half of the memory is Arc's, of which half comes back; an eighth is Foo's, all of it to be ended.
Scene halfFull() {
    Scene scene;
    scene.procs = {app(7, "Arc").mb(8192), app(8, "Foo").mb(2048)};
    scene.findings = {finding("browser:Arc", QuitApp{"Arc"}, 4096 * MiB),
                      finding("orphan:8", KillTrees{{8}}, 2048 * MiB),
                      finding("indexing", Advice{"Wait; it stops by itself"}), finding("hog:7", KillTrees{{7}})};
    return scene;
}

Names ids(const std::vector<DiagnosisCard>& cards) {
    Names found;
    for (const DiagnosisCard& card : cards) found.push_back(card.id);
    return found;
}

}  // namespace

TEST(MapScreen, EachArcSpansItsShareOneAfterTheOther) {
    const MapScreen map = halfFull().map();
    ASSERT_EQ(map.arcIds(), (Names{"app:Arc", "app:Foo"}));
    EXPECT_EQ(map.arcs[0].span, (MapScreen::Span{0, 180}));
    EXPECT_EQ(map.arcs[1].span, (MapScreen::Span{180, 45}));
    EXPECT_EQ(map.arcs[0].share, "50%");
    EXPECT_EQ(map.arcs[1].share, "12%");
    EXPECT_EQ(map.ramAt, 360);
    EXPECT_EQ(map.heldAt, 225);
    EXPECT_EQ(map.value, "10.2");
    EXPECT_EQ(map.unit, "GB");
    EXPECT_EQ(map.caption, "of 16 GB used");
}

TEST(MapScreen, TheOuterRingMarksWhatEachCanGiveBackAtItsEnd) {
    const MapScreen map = halfFull().map();
    EXPECT_EQ(map.arcs[0].quit, (MapScreen::Span{90, 90}));
    EXPECT_EQ(map.arcs[0].free.degrees, 0);
    EXPECT_EQ(map.arcs[1].free, (MapScreen::Span{180, 45}));
    EXPECT_EQ(map.arcs[1].quit.degrees, 0);
    EXPECT_EQ(map.arcs[0].accessible, "Arc, 8.2 GB, 50%, 4.1 GB comes back when you quit it");
    EXPECT_EQ(map.arcs[1].accessible, "Foo, 2.0 GB, 12%, 2,048\u00a0MB ends with Free");
}

TEST(MapScreen, TheRestIsDrawnLightestAndHasNoIcon) {
    Scene scene;
    scene.procs = {Making(7, "/tmp/a").uid(0).mb(5000)};
    const MapScreen map = scene.map();
    ASSERT_EQ(map.arcIds(), Names{"rest"});
    EXPECT_EQ(map.arcs[0].fill, Arc::Fill::rest);
    EXPECT_EQ(map.arcs[0].label, "Everything else");
    EXPECT_FALSE(map.arcs[0].icon.has_value());
}

TEST(MapScreen, WhatIsHeldBeyondTheMemoryFillsTheRing) {
    Scene scene;
    scene.procs = {app(7, "Arc").mb(20480)};
    const MapScreen map = scene.map();
    EXPECT_EQ(map.arcs.at(0).span.degrees, 360);
    EXPECT_EQ(map.ramAt, 288);
    EXPECT_EQ(map.heldAt, 360);
    EXPECT_EQ(map.caption, "4.1 GB spilled to disk");
}

TEST(MapScreen, IsReadOutAsTheSummary) {
    EXPECT_EQ(halfFull().map().accessible,
              "Memory map. Apps hold 10.2 GB of 16 GB RAM; 2,048\u00a0MB ends with Free, 4.1 GB comes back when you "
              "quit Arc.");
}

TEST(MapScreen, WithoutASelectionThePanelSaysWhatToDo) {
    const MapScreen map = halfFull().map();
    EXPECT_FALSE(map.panel.hasArc);
    EXPECT_EQ(map.panel.hint, "Click a part to see its causes.");
    EXPECT_TRUE(map.panel.findings.empty());
}

TEST(MapScreen, ASelectedArcShowsItsFindings) {
    Scene scene = halfFull();
    scene.state.selectedArc = "app:Arc";
    const MapScreen map = scene.map();
    EXPECT_TRUE(map.arcs[0].isSelected);
    EXPECT_FALSE(map.arcs[1].isSelected);
    EXPECT_TRUE(map.panel.hasArc);
    EXPECT_EQ(map.panel.name, "Arc");
    EXPECT_EQ(map.panel.amount, "8.2 GB");
    EXPECT_EQ(map.panel.share, "50%");
    ASSERT_EQ(ids(map.panel.findings), Names{"browser:Arc"});
    EXPECT_EQ(map.panel.findings[0].button->label, "Quit…");
    EXPECT_TRUE(map.panel.nothing.empty());
}

TEST(MapScreen, AnArcWithoutFindingsHoldsMemoryInUse) {
    Scene scene = halfFull();
    scene.procs.push_back(app(9, "Bar").mb(1024));
    scene.state.selectedArc = "app:Bar";
    EXPECT_EQ(scene.map().panel.nothing, "Nothing to fix here. It holds memory you are using.");
    EXPECT_TRUE(scene.map().panel.findings.empty());
}

TEST(MapScreen, FindingsOfNoArcAreAlsoFound) {
    const MapScreen map = halfFull().map();
    EXPECT_EQ(map.alsoFoundHeading, "Also found");
    EXPECT_EQ(ids(map.alsoFound), (Names{"indexing", "hog:7"}));
    EXPECT_EQ(map.alsoFound[0].name, "Spotlight indexing");
    EXPECT_EQ(map.alsoFound[1].button->label, "End…");
}

TEST(MapScreen, WithEveryFindingOnTheRingNothingIsAlsoFound) {
    Scene scene = halfFull();
    scene.findings.resize(2);
    EXPECT_TRUE(scene.map().alsoFoundHeading.empty());
    EXPECT_TRUE(scene.map().alsoFound.empty());
}

TEST(MapScreen, AnOutcomeStandsInThePanelOfItsArcElseByItself) {
    Scene scene = halfFull();
    scene.state.done = {
        {.finding = scene.findings[1], .line = "1 ended · 0 survivors · 5\u00a0MB", .name = "Foo", .icon = {}},
        {.finding = scene.findings[2], .line = "done", .name = "it", .icon = {}, .number = 1}};
    scene.state.selectedArc = "app:Foo";
    MapScreen map = scene.map();
    EXPECT_TRUE(map.panel.findings.empty());
    ASSERT_EQ(map.panel.resolved.size(), 1u);
    EXPECT_EQ(map.panel.resolved[0].name, "Foo");
    ASSERT_EQ(map.resolved.size(), 1u);
    EXPECT_EQ(map.resolved[0].name, "it");
    EXPECT_EQ(ids(map.alsoFound), Names{"hog:7"});
    scene.state.selectedArc.reset();
    EXPECT_EQ(scene.map().resolved.size(), 2u);
}

TEST(MapScreen, HeldArcsKeepTheirPlaces) {
    Scene scene = halfFull();
    scene.state.arcOrder = {"app:Foo", "app:Gone", "app:Arc"};
    const MapScreen map = scene.map();
    EXPECT_EQ(map.arcIds(), (Names{"app:Foo", "app:Arc"}));
    EXPECT_EQ(map.arcs[1].span, (MapScreen::Span{45, 180}));
}

TEST(MapScreen, AnAppThatIsCalledLikeTheRestIsAPartOfItsOwn) {
    Scene scene;
    scene.procs = {app(7, "rest").mb(4096), app(8, "leftovers").mb(3072), Making(9, "/tmp/a").uid(0).mb(2048),
                   Making(10, "/tmp/b").mb(100)};
    scene.findings = {finding("orphan:10", KillTrees{{10}}, 100 * MiB)};
    scene.state.selectedArc = "rest";
    scene.state.arcOrder = {"rest"};
    const MapScreen map = scene.map();
    EXPECT_EQ(map.arcIds(), (Names{"rest", "app:rest", "app:leftovers", "leftovers"}));
    EXPECT_EQ(map.arcs.at(0).fill, Arc::Fill::rest);
    EXPECT_TRUE(map.arcs[0].isSelected);
    EXPECT_EQ(map.arcs.at(1).fill, Arc::Fill::held);
    EXPECT_FALSE(map.arcs[1].isSelected);
    EXPECT_EQ(map.panel.name, "Everything else");
}

TEST(MapScreen, AnEmptyMachineHasAnEmptyRing) {
    Scene scene;
    scene.ram = 0;
    const MapScreen map = scene.map();
    EXPECT_TRUE(map.arcs.empty());
    EXPECT_EQ(map.heldAt, 0);
}

}  // namespace ravik
