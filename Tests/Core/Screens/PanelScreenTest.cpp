#include "Core/Screens/PanelScreen.h"

#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;

namespace {

using Action = Decision::Action;
using Middle = PanelScreen::Middle;
using Row = PanelScreen::Row;
using Ids = std::vector<std::string>;

/// What a panel is opened on.
struct Scene : Machine {
    std::vector<Finding> findings;
    PanelMemory memory;
    std::vector<Decision> suggestions;
    std::vector<LiveAction> live;
    std::size_t rulesOn = 0;
    double interval = 5;
    Time at = now + 4;

    template <typename Use>
    auto with(Use use) const {
        const Cards cards(*this, findings);
        return use(PanelSource{.snapshot = cards.snapshot,
                               .interval = interval,
                               .ramBytes = ram,
                               .suggestions = suggestions,
                               .live = live,
                               .rulesOn = rulesOn,
                               .host = host,
                               .now = at});
    }
    PanelScreen panel() const {
        return with([&](const PanelSource& source) { return PanelScreen(source, memory); });
    }
    Row row(Finding finding) {
        findings = {std::move(finding)};
        return panel().rows.at(0);
    }
    void fixed(const std::string& id, std::string line = "1 ended · 0 survivors · 9\u00a0MB") {
        memory.done.push_back({fakes::finding(id), std::move(line), {"App", "terminal"}});
    }
};

Finding orphan(Pid pid, std::uint64_t gain = 100 * MiB) {
    return finding("orphan:" + std::to_string(pid), KillTrees{{pid}}, gain);
}

Ids ids(const PanelScreen& screen) {
    Ids found;
    for (const Row& row : screen.rows) found.push_back((row.resolved ? "done " : "") + row.id);
    return found;
}

Scene sixFindings() {
    Scene scene;
    for (const char* id : {"a", "b", "c", "d", "e", "f"}) scene.findings.push_back(finding(id));
    return scene;
}

LiveAction action(std::uint64_t id, Action what, std::string target, Time at) {
    return {.id = id, .decision = {what, std::move(target), {7}, 0, "idle"}, .pids = {7}, .at = at, .undoneAt = {}};
}

}  // namespace

TEST(PanelScreen, AFirstOpeningBeforeAnyTickIsPendingWithNoAmount) {
    const Scene scene;
    const Snapshot unread;
    const PanelScreen screen({.snapshot = unread,
                              .ramBytes = scene.ram,
                              .suggestions = scene.suggestions,
                              .live = scene.live,
                              .host = scene.host,
                              .now = now},
                             {});
    EXPECT_EQ(screen.middle, Middle::pending);
    EXPECT_EQ(screen.title, "Reading your Mac…");
    EXPECT_EQ(screen.header, PanelScreen::Header());
    EXPECT_EQ(screen.hero.value, "—");
    EXPECT_EQ(screen.hero.unit, "");
    EXPECT_TRUE(screen.picture.segments.empty());
    EXPECT_TRUE(screen.rows.empty());
    EXPECT_EQ(screen.autopilotLine, "Autopilot is learning — not acting yet");
}

TEST(PanelScreen, TheHeaderSaysWhenTheMachineWasRead) {
    Scene scene;
    EXPECT_EQ(PanelScreen::word, "Ravik");
    EXPECT_EQ(scene.panel().header.checked, "checked 4 s ago");
    EXPECT_EQ(scene.panel().header.tooltip, "Read at 22:13:20Z; Ravik reads your Mac every 5 s");
    scene.interval = 7.9;
    EXPECT_EQ(scene.panel().header.tooltip, "Read at 22:13:20Z; Ravik reads your Mac every 7 s");
    scene.interval = 5;
    scene.host = linuxHost();
    EXPECT_EQ(scene.panel().header.tooltip, "Read at 22:13:20Z; Ravik reads your computer every 5 s");
}

TEST(PanelScreen, ACalmMachineHasOnlyItsPicture) {
    Scene scene;
    scene.procs = {Making(7, "/Applications/Arc.app/x").mb(6000)};
    const PanelScreen screen = scene.panel();
    EXPECT_EQ(screen.middle, Middle::calm);
    EXPECT_EQ(screen.title, "Your Mac is fine — nothing to free");
    EXPECT_EQ(PanelScreen::calmSymbol, "checkmark.circle.fill");
    EXPECT_EQ(screen.picture.held(), 6000 * MiB);
    EXPECT_EQ(screen.scaleLine, "6.0 of 16 GB used");
    EXPECT_TRUE(screen.rows.empty());
    EXPECT_TRUE(screen.suggestions.empty());
    EXPECT_FALSE(screen.free.isEnabled);
    EXPECT_EQ(screen.free.label, "");
    EXPECT_TRUE(screen.legend.empty());
    EXPECT_FALSE(screen.more);
    scene.host = linuxHost();
    EXPECT_EQ(scene.panel().title, "Your computer is fine — nothing to free");
}

TEST(PanelScreen, WhatWasJustDoneKeepsTheFindingsOnAMachineThatHasBecomeCalm) {
    Scene scene;
    scene.memory.result = "3 ended · 0 survivors · 312\u00a0MB";
    EXPECT_EQ(scene.panel().middle, Middle::findings);
    EXPECT_EQ(scene.panel().result, "3 ended · 0 survivors · 312\u00a0MB");
    EXPECT_EQ(scene.panel().hero.spoken(), "0 MB");
    EXPECT_EQ(scene.panel().free.label, "Nothing to free");
    scene.memory = {};
    scene.fixed("a");
    EXPECT_EQ(scene.panel().middle, Middle::findings);
    EXPECT_EQ(ids(scene.panel()), Ids{"done a"});
}

TEST(PanelScreen, TheAmountStandsAboveTheButtonAndTheReason) {
    Scene scene;
    scene.procs = {Making(7, "/tmp/a").mb(900), Making(8, "/Applications/Arc.app/x").mb(6000)};
    scene.findings = {orphan(7, 846 * MiB), finding("browser:Arc", QuitApp{"Arc"}, 3000 * MiB)};
    const PanelScreen screen = scene.panel();
    EXPECT_EQ(screen.middle, Middle::findings);
    EXPECT_EQ(screen.hero, ReadoutFace("3.8", "GB", ReadoutFace::State::live));
    EXPECT_EQ(PanelScreen::heroCaption, "you can free");
    EXPECT_EQ(screen.free, FreeButtonFace(846 * MiB));
    EXPECT_EQ(screen.gapLine, "Only what is safe. Quit Arc yourself for the rest.");
    EXPECT_EQ(screen.scaleLine, "6.9 of 16 GB used");
    EXPECT_FALSE(screen.result);
    EXPECT_FALSE(screen.more);
}

TEST(PanelScreen, AnAmountThatOnlyTheUserCanGetBackStandsAboveADisabledButton) {
    Scene scene;
    scene.findings = {finding("browser:Arc", QuitApp{"Arc"}, 3000 * MiB)};
    const PanelScreen screen = scene.panel();
    EXPECT_EQ(screen.hero.spoken(), "3.0 GB");
    EXPECT_EQ(screen.free.label, "Nothing to free");
    EXPECT_FALSE(screen.free.isEnabled);
    EXPECT_EQ(screen.gapLine, "Quit Arc yourself to get it back.");
}

TEST(PanelScreen, TheLegendHasTheQuitMarkOnlyWhereQuittingGivesMemoryBack) {
    Scene scene;
    scene.procs = {Making(7, "/tmp/a").mb(900)};
    scene.findings = {orphan(7)};
    EXPECT_EQ(scene.panel().legend, memoryLegend(scene.ram, false, scene.host));
    scene.findings = {cautioned(orphan(7))};
    EXPECT_EQ(scene.panel().legend, memoryLegend(scene.ram, true, scene.host));
}

TEST(PanelScreen, MemoryBeyondWhatIsInstalledHasSpilled) {
    Scene scene;
    scene.procs = {Making(7, "/Applications/Arc.app/x").mb(17000), Making(8, "/Applications/Foo.app/x").mb(1000)};
    // 18000 MiB, of which 16384 are installed
    EXPECT_EQ(scene.panel().scaleLine, "18.0 GB used — 1.6 GB spilled to disk");
    scene.procs = {Making(7, "/Applications/Arc.app/x").mb(16 * 1024)};
    EXPECT_EQ(scene.panel().scaleLine, "16.4 of 16 GB used");
}

TEST(PanelScreen, ARowSaysWhoWhatAndHowMuch) {
    Scene scene;
    scene.procs = {Making(7, "node /srv/server.js").mb(300), Making(8, "esbuild").parent(7).mb(12)};
    const Row row = scene.row(orphan(7, 1312 * MiB));
    EXPECT_EQ(row.id, "orphan:7");
    EXPECT_FALSE(row.resolved);
    EXPECT_EQ(row.icon, (IconRef{"node", "chevron.left.forwardslash.chevron.right"}));
    EXPECT_EQ(row.name, "server.js");
    EXPECT_EQ(row.sentence, "Left running 2 h after its window closed.");
    EXPECT_EQ(row.amount, "1,312\u00a0MB");
    EXPECT_EQ(row.verdict, VerdictFace(Tone::safe));
    EXPECT_EQ(row.button, "End 2…");
    EXPECT_EQ(row.help, "ends 2 processes");
    EXPECT_TRUE(row.isEnabled);
    EXPECT_TRUE(row.hasKeep);
    EXPECT_EQ(row.spoken(), "server.js. Verdict: safe. Left running 2 h after its window closed. 1,312\u00a0MB");
}

TEST(PanelScreen, ARowWithNothingToPressHasNoButton) {
    Scene scene;
    const Row row = scene.row(forbidden(finding("db:7"), "a database"));
    EXPECT_EQ(row.button, std::nullopt);
    EXPECT_FALSE(row.isEnabled);
    EXPECT_EQ(row.help, "");
    EXPECT_EQ(row.verdict, VerdictFace(Tone::never));
    EXPECT_EQ(scene.row(finding("disk", ScanDisk{})).button, std::nullopt);
}

TEST(PanelScreen, OnlyALeftoverThatCouldBeEndedCanBeKept) {
    Scene scene;
    scene.procs = {Making(7, "/tmp/a")};
    EXPECT_TRUE(scene.row(cautioned(orphan(7))).hasKeep);
    EXPECT_FALSE(scene.row(forbidden(orphan(7), "a build in progress")).hasKeep);
    EXPECT_FALSE(scene.row(orphan(9)).hasKeep);
    EXPECT_FALSE(scene.row(finding("orphan:7", KillTrees{})).hasKeep);
    EXPECT_FALSE(scene.row(finding("leftovers", KillTrees{{7}})).hasKeep);
    EXPECT_FALSE(scene.row(finding("automation:7", KillTrees{{7}})).hasKeep);
}

TEST(PanelScreen, SixFindingsShowThreeAndALink) {
    Scene scene = sixFindings();
    EXPECT_EQ(ids(scene.panel()), (Ids{"a", "b", "c"}));
    EXPECT_EQ(scene.panel().more, "+ 3 more in Ravik");
    scene.findings.resize(4);
    EXPECT_EQ(scene.panel().more, "+ 1 more in Ravik");
    scene.findings.resize(3);
    EXPECT_EQ(scene.panel().more, std::nullopt);
}

TEST(PanelScreen, AFixLeavesThreeRows) {
    Scene scene = sixFindings();
    scene.fixed("b");
    EXPECT_EQ(ids(scene.panel()), (Ids{"done b", "a", "c"}));
    // The link counts all that the machine has.
    EXPECT_EQ(scene.panel().more, "+ 3 more in Ravik");
    scene.findings.erase(scene.findings.begin() + 1);
    EXPECT_EQ(ids(scene.panel()), (Ids{"done b", "a", "c"}));
    EXPECT_EQ(scene.panel().more, "+ 2 more in Ravik");
    scene.fixed("a");
    EXPECT_EQ(ids(scene.panel()), (Ids{"done b", "done a", "c"}));
}

TEST(PanelScreen, AfterThreeFixesTheLastTwoAndOneMoreStand) {
    Scene scene = sixFindings();
    for (const char* id : {"a", "b", "c"}) scene.fixed(id);
    EXPECT_EQ(ids(scene.panel()), (Ids{"done b", "done c", "d"}));
    scene.fixed("d");
    EXPECT_EQ(ids(scene.panel()), (Ids{"done c", "done d", "e"}));
}

TEST(PanelScreen, AResolvedRowSaysWhatCameOfIt) {
    Scene scene;
    scene.fixed("a", "3 ended · 0 survivors · 312\u00a0MB");
    scene.fixed("b", "Firefox did not quit. Check it for a prompt.");
    const PanelScreen screen = scene.panel();
    EXPECT_EQ(screen.rows.at(0).resolved->symbol, "checkmark.circle.fill");
    EXPECT_EQ(screen.rows[0].sentence, "3 ended · 0 survivors · 312\u00a0MB");
    EXPECT_EQ(screen.rows[0].icon, (IconRef{"App", "terminal"}));
    EXPECT_EQ(screen.rows[0].button, std::nullopt);
    EXPECT_FALSE(screen.rows[0].hasKeep);
    EXPECT_EQ(screen.rows[0].spoken(), "3 ended · 0 survivors · 312\u00a0MB");
    EXPECT_EQ(screen.rows.at(1).resolved->symbol, "exclamationmark.circle");
    EXPECT_EQ(screen.rows[1].sentence, "Firefox did not quit. Check it for a prompt.");
}

TEST(PanelScreen, NoRowCanBePressedWhileFreeRuns) {
    Scene scene;
    scene.procs = {Making(7, "/tmp/a"), Making(8, "/tmp/b")};
    scene.findings = {orphan(7), orphan(8)};
    scene.memory.running = "Ending 2 processes…";
    EXPECT_EQ(scene.panel().free.label, "Ending 2 processes…");
    EXPECT_TRUE(scene.panel().free.isBusy);
    EXPECT_FALSE(scene.panel().rows.at(0).isEnabled);
    EXPECT_FALSE(scene.panel().rows.at(1).isEnabled);
    EXPECT_EQ(scene.panel().rows.at(1).button, "End…");
}

TEST(PanelScreen, ARowCannotBePressedWhileItsOwnFixIsUnderWay) {
    Scene scene;
    scene.procs = {Making(7, "/tmp/a"), Making(8, "/tmp/b")};
    scene.findings = {orphan(7), orphan(8)};
    scene.memory.underWay = {"orphan:7"};
    EXPECT_FALSE(scene.panel().rows.at(0).isEnabled);
    EXPECT_TRUE(scene.panel().rows.at(1).isEnabled);
    EXPECT_TRUE(scene.panel().free.isEnabled);
}

TEST(PanelScreen, RowsThatAreHeldKeepTheirOrder) {
    Scene scene = sixFindings();
    scene.memory.held = {"c", "a", "b"};
    EXPECT_EQ(ids(scene.panel()), (Ids{"c", "a", "b"}));
    scene.findings.erase(scene.findings.begin());
    EXPECT_EQ(ids(scene.panel()), (Ids{"c", "d", "b"})) << "who comes takes the place of who goes";
    scene.fixed("c");
    EXPECT_EQ(ids(scene.panel()), (Ids{"done c", "d", "b"}));
    scene.memory.held.clear();
    EXPECT_EQ(ids(scene.panel()), (Ids{"done c", "b", "d"}));
}

TEST(PanelScreen, TheRowUnderThePointerDoesNotGo) {
    Scene scene = sixFindings();
    scene.memory.held = {"d", "e", "f"};
    scene.memory.pointed = "e";
    EXPECT_EQ(ids(scene.panel()), (Ids{"a", "e", "b"}));
    scene.memory.pointed = "c";
    EXPECT_EQ(ids(scene.panel()), (Ids{"a", "b", "c"}));
    scene.memory.pointed = "gone";
    EXPECT_EQ(ids(scene.panel()), (Ids{"a", "b", "c"}));
}

TEST(PanelScreen, OffersWhatTheAutopilotWouldDo) {
    Scene scene;
    scene.suggestions = {{Action::pause, "Docker Desktop", {7}, 2900 * MiB, "idle 46 min, not focused"},
                         {Action::demote, "Foo", {8}, 0, "busy in the background"}};
    EXPECT_EQ(PanelScreen::suggestionsTitle, "Autopilot would…");
    const auto rows = scene.panel().suggestions;
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].title, "pause Docker Desktop");
    EXPECT_EQ(rows[0].icon.app, "Docker Desktop");
    EXPECT_EQ(rows[0].reason, "idle 46 min, not focused · 2,900\u00a0MB");
    EXPECT_EQ(rows[0].acceptHelp, "Pauses it now. Undo for ten minutes, and it resumes the moment you go to it.");
    EXPECT_EQ(rows[0].dismissHelp, "Teaches it: not offered again for a day, and counted as a wrong call");
    EXPECT_EQ(rows[1].title, "slow Foo");
    EXPECT_EQ(rows[1].reason, "busy in the background");
    EXPECT_EQ(rows[1].acceptHelp, "Lowers its priority now. Undo for ten minutes.");
    EXPECT_NE(rows[0].id, rows[1].id);
    EXPECT_EQ(PanelScreen::acceptLabel, "Do it");
    EXPECT_EQ(PanelScreen::dismissLabel, "Not this");
}

TEST(PanelScreen, SaysWhatTheAutopilotDoes) {
    Scene scene;
    EXPECT_EQ(scene.panel().autopilotLine, "Autopilot is learning — not acting yet");
    scene.rulesOn = 1;
    EXPECT_EQ(scene.panel().autopilotLine, "Autopilot · 1 rule on · nothing to undo");
    scene.rulesOn = 2;
    EXPECT_EQ(scene.panel().autopilotLine, "Autopilot · 2 rules on · nothing to undo");
}

TEST(PanelScreen, WhatTheAutopilotHasDoneCanBeUndone) {
    Scene scene;
    scene.rulesOn = 1;
    scene.live = {action(3, Action::pause, "Docker Desktop", scene.at - 200),
                  action(5, Action::demote, "Foo", scene.at - 595)};
    const PanelScreen screen = scene.panel();
    EXPECT_EQ(screen.autopilotLine, "");
    EXPECT_EQ(screen.live,
              (std::vector<PanelScreen::Live>{{3, "Paused", "Docker Desktop", "7 minutes left", "Resumes it now"},
                                              {5, "Demoted", "Foo", "1 minute left", "Gives its priority back now"}}));
    EXPECT_EQ(PanelScreen::undoLabel, "Undo");
    EXPECT_EQ(PanelScreen::autopilotSymbol, "airplane");
}

TEST(PanelScreen, TheWeekAndTheFooterStandInEveryState) {
    Scene scene;
    scene.memory.week = "This week: 3 fixes";
    EXPECT_EQ(scene.panel().week, "This week: 3 fixes");
    EXPECT_EQ(PanelScreen::weekSymbol, "checkmark.seal");
    EXPECT_EQ(PanelScreen::openLabel, "Open Ravik");
    EXPECT_EQ(PanelScreen::quitLabel, "Quit Ravik");
    EXPECT_EQ(scene.panel().footer.feedback, "Send feedback…");
    EXPECT_TRUE(scene.panel().footer.canSendFeedback);
    EXPECT_EQ(scene.panel().footer.quitKey, "⌘Q");
    scene.host = linuxHost();
    EXPECT_EQ(scene.panel().footer.quitKey, "Ctrl+Q");
    scene.memory.feedback = "Building the bundle…";
    scene.memory.isBuildingFeedback = true;
    EXPECT_EQ(scene.panel().footer.feedback, "Building the bundle…");
    EXPECT_FALSE(scene.panel().footer.canSendFeedback);
    scene.memory.feedback = "Saved to the Desktop";
    scene.memory.isBuildingFeedback = false;
    EXPECT_EQ(scene.panel().footer.feedback, "Saved to the Desktop");
    EXPECT_TRUE(scene.panel().footer.canSendFeedback);
}

TEST(PanelScreen, NamesTheNextMomentAtWhichATextChanges) {
    Scene scene;
    PanelScreen screen = scene.panel();
    const auto tell = [&](Time at) {
        scene.at = at;
        return scene.with([&](const PanelSource& source) { return screen.tellTime(source); });
    };
    EXPECT_EQ(tell(now + 4.5), now + 5);
    EXPECT_EQ(screen.header.checked, "checked 4 s ago");
    EXPECT_EQ(tell(now + 5), now + 6);
    EXPECT_EQ(screen.header.checked, "checked 5 s ago");
    EXPECT_EQ(tell(now + 90), now + 120);
    EXPECT_EQ(screen.header.checked, "checked 1 min ago");
    scene.live = {action(3, Action::pause, "Foo", now - 200)};
    screen = scene.panel();
    EXPECT_EQ(tell(now + 90), now + 100);
    EXPECT_EQ(screen.live.at(0).timeLeft, "6 minutes left");
    EXPECT_EQ(screen, scene.panel());
}

TEST(PanelScreen, TwoTicksThatShowTheSameAreTheSameRecord) {
    Scene scene;
    scene.procs = {Making(7, "/tmp/a").bytes(900 * MiB)};
    scene.findings = {orphan(7)};
    const PanelScreen first = scene.panel();
    scene.at += 0.5;
    EXPECT_EQ(scene.panel(), first);
    scene.at += 0.5;
    EXPECT_NE(scene.panel(), first);
}

}  // namespace ravik
