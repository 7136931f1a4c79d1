#include "Core/Screens/DiagnosisScreen.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;

namespace {

using Section = DiagnosisScreen::Section;
using State = DiagnosisScreen::State;
using Mode = DiagnosisState::Mode;
using Names = std::vector<std::string>;

Making app(Pid pid, const std::string& name) { return Making(pid, "/Applications/" + name + ".app/x"); }

struct Scene : Machine {
    std::vector<Finding> findings;
    DiagnosisState state;
    bool isSampled = true;
    bool hasDisk = true;
    bool alertsOff = false;
    std::optional<std::string> lastFix;

    DiagnosisScreen screen() const {
        Cards cards(*this, findings);
        cards.snapshot.sampled = isSampled;
        const ScreenInput input{cards.snapshot, cards.index, host, ram, now, hasDisk};
        return {input, DiagnosisScreen::picture(input), state, alertsOff, lastFix};
    }
    DiagnosisCard card(const std::string& id) const {
        const DiagnosisScreen shown = screen();
        for (const Section& section : shown.sections) {
            for (const DiagnosisCard& card : section.cards) {
                if (card.id == id) return card;
            }
        }
        ADD_FAILURE() << "no card " << id;
        return {};
    }
    void done(Finding finding, std::string line) {
        state.done.push_back({.finding = std::move(finding), .line = std::move(line), .name = "it", .icon = {}});
    }
};

/// Two leftovers that Free ends, one that is busy, an app to quit, a tip.
Scene full() {
    Scene scene;
    scene.procs = {Making(7, "node /tmp/a.js").mb(500), Making(8, "node /tmp/b.js").parent(7).mb(100),
                   Making(9, "/tmp/vite").mb(300), app(10, "Arc").mb(6000), Making(11, "/tmp/tool").mb(700)};
    scene.findings = {finding("orphan:7", KillTrees{{7}}, 600 * MiB), finding("orphan:11", KillTrees{{11}}, 700 * MiB),
                      cautioned(finding("orphan:9", KillTrees{{9}}, 300 * MiB)),
                      finding("browser:Arc", QuitApp{"Arc"}, 3000 * MiB),
                      finding("indexing", Advice{"Wait; it stops by itself"})};
    return scene;
}

}  // namespace

TEST(DiagnosisScreen, WaitsForTheFirstReading) {
    Scene scene = full();
    scene.isSampled = false;
    EXPECT_EQ(scene.screen().state, State::waiting);
    EXPECT_EQ(scene.screen().waiting.title, "Reading your Mac…");
    EXPECT_EQ(scene.screen().waiting.line, "This takes a few seconds.");
    EXPECT_TRUE(scene.screen().sections.empty());
    scene.host = linuxHost();
    EXPECT_EQ(scene.screen().waiting.title, "Reading your computer…");
}

TEST(DiagnosisScreen, IsCalmWhereNothingWasFoundAndNothingDone) {
    Scene scene;
    scene.procs = {app(7, "Arc").mb(6000)};
    const DiagnosisScreen screen = scene.screen();
    EXPECT_EQ(screen.state, State::calm);
    EXPECT_EQ(screen.calm.symbol, "checkmark.circle.fill");
    EXPECT_EQ(screen.calm.title, "Your Mac is fine");
    EXPECT_EQ(screen.calm.line, "Nothing to free. Ravik keeps watching.");
    EXPECT_EQ(screen.calm.bar.segments.size(), 1u);
    EXPECT_EQ(screen.calm.legend, memoryLegend(16 * GiB, false, scene.host));
    scene.lastFix = "3 ended · 0 survivors · 1,200\u00a0MB";
    EXPECT_EQ(scene.screen().calm.line, "Nothing to free. Last fix: 3 ended · 0 survivors · 1,200\u00a0MB");
}

TEST(DiagnosisScreen, WhatWasDoneStandsBeforeTheCalm) {
    Scene scene;
    scene.done(finding("orphan:7", KillTrees{{7}}), "1 ended · 0 survivors · 5\u00a0MB");
    EXPECT_EQ(scene.screen().state, State::findings);
    EXPECT_EQ(scene.screen().resolved.size(), 1u);
}

TEST(DiagnosisScreen, TheHeroSaysWhatCanBeHadBack) {
    const DiagnosisScreen screen = full().screen();
    EXPECT_EQ(screen.state, State::findings);
    EXPECT_EQ(screen.hero.readout.value, "4.6");
    EXPECT_EQ(screen.hero.readout.unit, "GB");
    EXPECT_EQ(screen.hero.label, "you can free");
    EXPECT_EQ(screen.hero.line, "Only what is safe. Quit Arc yourself for the rest.");
    EXPECT_EQ(screen.free.label, "Free 1,300\u00a0MB");
    EXPECT_TRUE(screen.free.isEnabled);
}

TEST(DiagnosisScreen, TheHerosLineIsWhatRunsThenWhatCameOfItThenThatAlertsAreOff) {
    Scene scene = full();
    scene.alertsOff = true;
    EXPECT_EQ(scene.screen().hero.line, "Alerts are off, so Ravik waits here until you look.");
    scene.state.result = "2 ended · 0 survivors · 1,300\u00a0MB";
    EXPECT_EQ(scene.screen().hero.line, "2 ended · 0 survivors · 1,300\u00a0MB");
    scene.state.running = "Ending 2 processes";
    EXPECT_EQ(scene.screen().hero.line, "Ending 2 processes");
}

TEST(DiagnosisScreen, TheFreeButtonTellsOfFreeAndWaitsForACard) {
    Scene scene = full();
    scene.state.running = "Ending vite…";
    EXPECT_EQ(scene.screen().free.label, "Free 1,300\u00a0MB");
    EXPECT_FALSE(scene.screen().free.isEnabled);
    EXPECT_FALSE(scene.screen().free.isBusy);
    scene.state.freeing = scene.state.running = "Ending 2 processes";
    EXPECT_EQ(scene.screen().free.label, "Ending 2 processes");
    EXPECT_TRUE(scene.screen().free.isBusy);
}

TEST(DiagnosisScreen, WithTipsAloneNothingIsSafeToEnd) {
    Scene scene;
    scene.findings = {finding("indexing", Advice{"Wait; it stops by itself"}), finding("disk", ScanDisk{})};
    EXPECT_EQ(scene.screen().hero.line, "Nothing is safe to end in one click.");
    EXPECT_FALSE(scene.screen().free.isEnabled);
    EXPECT_EQ(scene.screen().free.label, "Nothing to free");
}

TEST(DiagnosisScreen, TheModePickerNamesBothViews) {
    Scene scene = full();
    scene.state.mode = Mode::map;
    const DiagnosisScreen::ModePicker picker = scene.screen().picker;
    EXPECT_EQ(picker.selected, Mode::map);
    EXPECT_EQ(picker.cardsLabel, "Cards");
    EXPECT_EQ(picker.mapLabel, "Map");
    EXPECT_EQ(picker.help, "Cards: every cause with its button. Map: where the memory is.");
}

TEST(DiagnosisScreen, BeforeAndAfterShareAScale) {
    const DiagnosisScreen::BeforeAfter bars = full().screen().beforeAfter;
    EXPECT_EQ(bars.nowHeading, "Now");
    // A child of 100 MB is too small for a name of its own, and so is what is left over.
    EXPECT_EQ(bars.nowHead, "7.5 of 16 GB used");
    EXPECT_EQ(bars.afterHeading, "After Free and quitting Arc and vite");
    EXPECT_EQ(bars.afterHead, "3.0 of 16 GB used");
    EXPECT_EQ(bars.now.ramAt, bars.after.ramAt);
    EXPECT_EQ(bars.after.segments.at(0).stays, bars.now.segments.at(0).stays);
    EXPECT_EQ(bars.legend.size(), 5u);
}

TEST(DiagnosisScreen, WithNothingToQuitTheSecondBarIsAfterFree) {
    Scene scene = full();
    scene.findings.resize(2);
    EXPECT_EQ(scene.screen().beforeAfter.afterHeading, "After Free");
    EXPECT_EQ(scene.screen().beforeAfter.legend.size(), 4u);
}

TEST(DiagnosisScreen, WhatIsHeldBeyondTheMemoryIsSpilled) {
    Scene scene = full();
    scene.ram = 8 * GiB;
    scene.procs.push_back(app(12, "Foo").mb(2000));
    EXPECT_EQ(scene.screen().beforeAfter.nowHead, "8 GB · 1.4 GB spilled to disk");
    scene.procs.pop_back();
    scene.procs.push_back(app(12, "Foo").mb(8192 - 7600));
    EXPECT_EQ(scene.screen().beforeAfter.nowHead, "8.2 of 8 GB used");
}

TEST(DiagnosisScreen, EveryFindingHasItsCardInItsSection) {
    const DiagnosisScreen screen = full().screen();
    Names headings;
    for (const Section& section : screen.sections) headings.push_back(section.heading);
    EXPECT_EQ(headings, (Names{"Safe to end", "Busy — asks first", "Quit when you are ready", "Left alone"}));
    EXPECT_EQ(screen.cardIds(), (Names{"orphan:7", "orphan:11", "orphan:9", "browser:Arc", "indexing"}));
}

TEST(DiagnosisScreen, AQuitWithACautionStandsUnderBusy) {
    Scene scene;
    scene.procs = {app(7, "Cursor").mb(6000)};
    scene.findings = {cautioned(finding("holder:Cursor", QuitApp{"Cursor"}, 6000 * MiB))};
    ASSERT_EQ(scene.screen().sections.size(), 1u);
    EXPECT_EQ(scene.screen().sections[0].heading, "Busy — asks first");
    EXPECT_FALSE(scene.card("holder:Cursor").verdict.has_value());
}

TEST(DiagnosisScreen, ACardSaysWhomItIsAboutAndWhatItGivesBack) {
    const DiagnosisCard card = full().card("orphan:7");
    EXPECT_EQ(card.name, "a.js");
    ASSERT_TRUE(card.verdict);
    EXPECT_EQ(card.verdict->word, "safe");
    EXPECT_EQ(card.sentence, "Left running 2 h after its window closed.");
    EXPECT_EQ(card.amount, "600\u00a0MB back");
    EXPECT_TRUE(card.isMemory);
    EXPECT_EQ(card.held, "600\u00a0MB");
    EXPECT_EQ(card.heldApart(), "") << "the amount tells it";
    ASSERT_TRUE(card.button);
    EXPECT_EQ(card.button->label, "End 2…");
    EXPECT_EQ(card.button->help, "ends 2 processes");
    EXPECT_TRUE(card.button->isEnabled);
    EXPECT_TRUE(card.instead.empty());
    EXPECT_EQ(card.accessible, "a.js. Verdict: safe. Left running 2 h after its window closed. 600\u00a0MB back");
}

TEST(DiagnosisScreen, TheMarkFollowsTheVerdict) {
    Scene scene = full();
    scene.findings.push_back(forbidden(finding("hog:11"), "a build (ninja, pid 11)"));
    EXPECT_EQ(scene.card("orphan:9").verdict->word, "asks first");
    EXPECT_FALSE(scene.card("browser:Arc").verdict.has_value());
    EXPECT_EQ(scene.card("hog:11").verdict->word, "left alone");
    EXPECT_EQ(scene.card("indexing").verdict->word, "tip");
}

TEST(DiagnosisScreen, WithoutAGainTheCardSaysWhatWillBeDone) {
    Scene scene = full();
    scene.findings = {finding("hog:9", KillTrees{{9}}), finding("disk", ScanDisk{})};
    EXPECT_EQ(scene.card("hog:9").amount, "ends 1 process");
    EXPECT_FALSE(scene.card("hog:9").isMemory);
    EXPECT_EQ(scene.card("hog:9").held, "300\u00a0MB");
    EXPECT_EQ(scene.card("hog:9").heldApart(), "300\u00a0MB");
    EXPECT_THAT(scene.card("hog:9").accessible, testing::EndsWith(" Holds 300\u00a0MB. Ends 1 process"));
    EXPECT_EQ(scene.card("disk").amount, "opens Disk");
    EXPECT_TRUE(scene.card("disk").opensDisk);
    EXPECT_FALSE(scene.card("disk").button.has_value());
    EXPECT_EQ(scene.card("disk").held, "");
}

TEST(DiagnosisScreen, WithoutADiskScreenNoCardLeadsThere) {
    Scene scene = full();
    scene.findings = {finding("disk", ScanDisk{})};
    scene.hasDisk = false;
    EXPECT_FALSE(scene.card("disk").opensDisk);
    EXPECT_EQ(scene.card("disk").amount, "");
}

TEST(DiagnosisScreen, TabComesToTheFirstCardOrTheSelectedOne) {
    const auto stops = [](const Scene& scene) {
        Names found;
        for (const Section& section : scene.screen().sections) {
            for (const DiagnosisCard& card : section.cards) {
                if (card.isStop) found.push_back(card.id);
            }
        }
        return found;
    };
    Scene scene = full();
    EXPECT_EQ(stops(scene), Names{"orphan:7"});
    scene.state.selected = "browser:Arc";
    EXPECT_EQ(stops(scene), Names{"browser:Arc"});
    scene.state.selected.reset();
    scene.findings.erase(scene.findings.begin(), scene.findings.begin() + 2);
    EXPECT_EQ(stops(scene), Names{"orphan:9"}) << "nothing is safe to end";
}

TEST(DiagnosisScreen, WithoutAButtonTheCardSaysWhyOrWhatToDo) {
    Scene scene = full();
    scene.findings.push_back(forbidden(finding("hog:11"), "a build (ninja, pid 11)"));
    EXPECT_FALSE(scene.card("indexing").button.has_value());
    EXPECT_EQ(scene.card("indexing").instead, "Wait; it stops by itself");
    EXPECT_EQ(scene.card("indexing").amount, "advice, no button");
    EXPECT_EQ(scene.card("hog:11").instead, "A build (ninja, pid 11).");
    EXPECT_EQ(scene.card("hog:11").amount, "no button — left running");
    EXPECT_TRUE(scene.card("hog:11").accessible.ends_with(". No button — left running. A build (ninja, pid 11)."));
}

TEST(DiagnosisScreen, TheSelectedCardNamesItsChord) {
    Scene scene = full();
    scene.state.selected = "orphan:7";
    EXPECT_TRUE(scene.card("orphan:7").isSelected);
    EXPECT_EQ(scene.card("orphan:7").button->help, "ends 2 processes (⌘⌫ when selected)");
    EXPECT_EQ(scene.card("orphan:9").button->help, "asks, then ends 1 process");
    EXPECT_FALSE(scene.card("orphan:9").isSelected);
    scene.host.kind = HostKind::linux;
    EXPECT_EQ(scene.card("orphan:7").button->help, "ends 2 processes (Ctrl+Backspace when selected)");
}

TEST(DiagnosisScreen, WhileItsActionRunsACardCannotBePressed) {
    Scene scene = full();
    scene.state.ending = {"orphan:7"};
    EXPECT_TRUE(scene.card("orphan:7").isEnding);
    EXPECT_FALSE(scene.card("orphan:7").button->isEnabled);
    EXPECT_TRUE(scene.card("orphan:9").button->isEnabled);
}

TEST(DiagnosisScreen, HeldCardsKeepTheirOrderWithinTheirSection) {
    Scene scene = full();
    scene.state.cardOrder = {"orphan:11", "orphan:9", "orphan:99", "orphan:7"};
    EXPECT_EQ(scene.screen().cardIds(), (Names{"orphan:11", "orphan:7", "orphan:9", "browser:Arc", "indexing"}));
}

TEST(DiagnosisScreen, AnActionStandsForItsCard) {
    Scene scene = full();
    scene.done(scene.findings[0], "2 ended · 0 survivors · 600\u00a0MB");
    EXPECT_EQ(scene.screen().cardIds(), (Names{"orphan:11", "orphan:9", "browser:Arc", "indexing"}));
    scene.state.done[0].replacesCard = false;
    EXPECT_EQ(scene.screen().cardIds().size(), 5u);
    EXPECT_EQ(scene.screen().resolved.size(), 1u);
}

TEST(DiagnosisScreen, WhatHasNotFullyWorkedIsInTheCautionColour) {
    const auto colour = [](const std::string& line) {
        Scene scene;
        scene.done(finding("orphan:7", KillTrees{{7}}), line);
        return scene.screen().resolved.at(0).face.colour;
    };
    EXPECT_EQ(colour("1 ended · 0 survivors · 5\u00a0MB"), "safe");
    EXPECT_EQ(colour("Ended with Free"), "safe");
    EXPECT_EQ(colour("Left running: node is actively working (9% CPU)."), "caution");
    EXPECT_EQ(colour("0 ended · 1 survivor: node (pid 7) did not exit after KILL"), "caution");
    EXPECT_EQ(colour("Arc did not quit. Check it for a prompt."), "caution");
}

TEST(DiagnosisScreen, TwoActionsOnOneCauseAreTwoOutcomes) {
    Scene scene;
    scene.done(finding("leftovers", KillTrees{{7}}), "1 ended · 0 survivors · 5\u00a0MB");
    scene.done(finding("leftovers", KillTrees{{8}}), "1 ended · 0 survivors · 6\u00a0MB");
    scene.state.done[1].number = 1;
    const auto resolved = scene.screen().resolved;
    ASSERT_EQ(resolved.size(), 2u);
    EXPECT_NE(resolved[0].id, resolved[1].id);
    EXPECT_EQ(resolved[1].name, "it");
    EXPECT_EQ(resolved[1].accessible, "it. 1 ended · 0 survivors · 6\u00a0MB");
}

TEST(DiagnosisScreen, TheMapTakesThePlaceOfTheCards) {
    Scene scene = full();
    scene.done(finding("orphan:70", KillTrees{{70}}), "1 ended · 0 survivors · 5\u00a0MB");
    scene.state.mode = Mode::map;
    EXPECT_TRUE(scene.screen().sections.empty());
    EXPECT_TRUE(scene.screen().resolved.empty());
    EXPECT_EQ(scene.screen().hero.readout.value, "4.6");
}

TEST(DiagnosisScreen, TheModeIsStoredByItsLabel) {
    EXPECT_EQ(word(Mode::cards), "Cards");
    EXPECT_EQ(word(Mode::map), "Map");
    EXPECT_EQ(parseDiagnosisMode("Map"), Mode::map);
    EXPECT_EQ(parseDiagnosisMode("Cards"), Mode::cards);
    EXPECT_EQ(parseDiagnosisMode("map"), std::nullopt);
}

}  // namespace ravik
