#include "Core/Wording/Plain.h"

#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;

namespace {

Machine withNode() {
    Machine machine;
    machine.procs = {Making(7, "node /srv/a.js").mb(10)};
    return machine;
}

std::string sentenceOf(const Finding& finding, const Machine& machine = withNode()) {
    return Cards(machine).sentence(finding);
}

}  // namespace

TEST(Plain, SentencesBeginLargeAndEndWithAMark) {
    EXPECT_EQ(Plain::sentenceCase("  quit it "), "Quit it.");
    EXPECT_EQ(Plain::sentenceCase("really?"), "Really?");
    EXPECT_EQ(Plain::sentenceCase("stop!"), "Stop!");
    EXPECT_EQ(Plain::sentenceCase("done."), "Done.");
    EXPECT_EQ(Plain::sentenceCase("7 left"), "7 left.");
    EXPECT_EQ(Plain::sentenceCase("éditeur holds 2 GB"), "Éditeur holds 2 GB.");
    EXPECT_EQ(Plain::sentenceCase(" \t\n "), "");
    EXPECT_EQ(Plain::sentenceCase(""), "");
}

TEST(Plain, NamesTheCausesThatHaveNoSubject) {
    const Cards cards(withNode());
    EXPECT_EQ(cards.name(finding("leftovers", KillTrees{{7}})), "Leftovers from AI tools");
    EXPECT_EQ(cards.name(finding("sessions")), "AI coding sessions");
    EXPECT_EQ(cards.name(finding("thrash")), "Memory spilling to disk");
    EXPECT_EQ(cards.name(finding("disk", ScanDisk{})), "Disk almost full");
    EXPECT_EQ(cards.name(finding("indexing")), "Spotlight indexing");
    EXPECT_EQ(cards.name(finding("automation:7", KillTrees{{7}})), "Hidden browser window");
    EXPECT_EQ(cards.name(finding("orphan:7", KillTrees{{7}})), "a.js");
}

TEST(Plain, SpeaksOfTheHostsMachine) {
    Machine machine;
    machine.host = linuxHost();
    const Cards cards(machine);
    EXPECT_EQ(cards.name(finding("indexing")), "File indexing");
    EXPECT_EQ(cards.sentence(finding("thrash")), "Your computer is writing memory to disk, which slows it.");
    EXPECT_EQ(cards.sentence(finding("disk", ScanDisk{})), "Low space slows your computer. Look for files to delete.");
}

TEST(Plain, SaysOneSentenceForEachCause) {
    EXPECT_EQ(sentenceOf(finding("leftovers", KillTrees{{7}})), "Left behind by coding sessions that have ended.");
    EXPECT_EQ(sentenceOf(finding("thrash")), "Your Mac is writing memory to disk, which slows it.");
    EXPECT_EQ(sentenceOf(finding("disk", ScanDisk{})), "Low space slows your Mac. Look for files to delete.");
    EXPECT_EQ(sentenceOf(finding("indexing")), "Busy after big changes. It stops on its own.");
    EXPECT_EQ(sentenceOf(finding("vm:Docker")), "A virtual machine keeps its memory even when idle.");
    EXPECT_EQ(sentenceOf(finding("hog:7", KillTrees{{7}})), "Working the processor hard without a break.");
    EXPECT_EQ(sentenceOf(finding("something:new")), "");
}

TEST(Plain, TellsTheAgeWhereThereIsOne) {
    EXPECT_EQ(sentenceOf(finding("automation:7", KillTrees{{7}})),
              "A tool opened it 2 h ago. It can block your own browser.");
    EXPECT_EQ(sentenceOf(finding("automation:8", KillTrees{{8}})), "A tool opened it. It can block your own browser.");
    EXPECT_EQ(sentenceOf(finding("db:7")), "A database left running 2 h. Stop it yourself.");
    EXPECT_EQ(sentenceOf(finding("db:8")), "A database left running. Stop it yourself.");
    EXPECT_EQ(sentenceOf(finding("orphan:7", KillTrees{{7}})), "Left running 2 h after its window closed.");
    EXPECT_EQ(sentenceOf(finding("orphan:8", KillTrees{{8}})), "Left running after its window closed.");
    EXPECT_EQ(sentenceOf(finding("browser:node: a.js", QuitApp{"node: a.js"})),
              "Open 2 h. Quitting gives back about half.");
    EXPECT_EQ(sentenceOf(finding("browser:Gone", QuitApp{"Gone"})), "Open. Quitting gives back about half.");
}

TEST(Plain, ABusyOrphanAsksFirst) {
    EXPECT_EQ(sentenceOf(cautioned(finding("orphan:7", KillTrees{{7}}))), "Still busy, so it asks before ending.");
}

TEST(Plain, AForbiddenHogShouldFinishItsWork) {
    EXPECT_EQ(sentenceOf(forbidden(finding("hog:7"), "a build in progress (clang, pid 7)")),
              "Working hard on something it should finish.");
}

TEST(Plain, WhatTheUserKeepsIsSaidFirst) {
    EXPECT_EQ(sentenceOf(forbidden(finding("orphan:7"), "on your Keep list — you asked Ravik to leave it running")),
              "You asked Ravik to keep this running.");
    EXPECT_EQ(sentenceOf(forbidden(finding("orphan:7"), "on your Keep list")),
              "Left running 2 h after its window closed.");
}

TEST(Plain, CountsTheSessionsThatLive) {
    Machine machine;
    machine.procs = {Making(7, "claude"), Making(8, "codex"), Making(9, "aider"),
                     Making(10, "/Users/me/.claude/x").parent(1)};
    EXPECT_EQ(sentenceOf(finding("sessions"), machine), "3 running at once, each holding memory.");
}

TEST(Plain, AHolderThatGrewTellsHowMuch) {
    Finding grown = titled(finding("holder:Cursor", QuitApp{"Cursor"}), "Cursor grew from 1.2 GB to 4.0 GB in 7 min");
    EXPECT_EQ(sentenceOf(grown), "Grew 1.2 → 4.0 GB in 7 min. Quitting it gives it all back.");
    grown.remedy = KillTrees{{7}};
    EXPECT_EQ(sentenceOf(grown), "Grew 1.2 → 4.0 GB in 7 min. Ending it gives it all back.");
    grown.title = "Cursor grew to 4.1 GB in 7 min";
    EXPECT_EQ(sentenceOf(grown), "Grew to 4.1 GB in 7 min. Ending it gives it all back.");
}

TEST(Plain, AHolderThatDidNotGrowSaysNothingOfQuitting) {
    EXPECT_EQ(sentenceOf(titled(finding("holder:Cursor", QuitApp{"Cursor"}), "Cursor holds 7.2 GB — 30% of your RAM")),
              "Holds a large share of your memory right now.");
}

TEST(Plain, AnExtensionHostIsRestarted) {
    Finding host = titled(finding("holder:Cursor", KillTrees{{7}}, 2500 * MiB), "Cursor holds 4.0 GB — its extensions",
                          "extension host (pid 7) holds 2.5 GB of it");
    EXPECT_EQ(sentenceOf(host), "Restarting its extensions gives back 2.5 GB. Your windows stay open.");
    host.title = "Cursor grew from 1.2 GB to 4.0 GB in 7 min";
    EXPECT_EQ(sentenceOf(host),
              "Grew 1.2 → 4.0 GB in 7 min. Restarting its extensions gives back 2.5 GB. Your windows stay open.");
}

}  // namespace ravik
