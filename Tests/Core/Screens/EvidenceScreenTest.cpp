#include "Core/Screens/EvidenceScreen.h"

#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;

namespace {

struct Scene : Machine {
    std::vector<Finding> findings;

    EvidenceScreen sheet(const std::string& id) const {
        const Cards cards(*this, findings);
        return {id, {cards.snapshot, cards.index, host, ram, now}};
    }
};

Scene leftover() {
    Scene scene;
    scene.procs = {Making(7, "node /tmp/a.js").mb(500), Making(8, "/tmp/esbuild").parent(7).mb(100),
                   Making(9, "/tmp/worker").parent(7).mb(200)};
    scene.findings = {titled(finding("orphan:7", KillTrees{{7}}, 800 * MiB), "a.js left running", "pid 7 · 2 h")};
    return scene;
}

const EvidenceScreen::Row* row(const EvidenceScreen& sheet, const std::string& label) {
    for (const auto& row : sheet.rows) {
        if (row.label == label) return &row;
    }
    return nullptr;
}

}  // namespace

TEST(EvidenceScreen, TheHeaderSaysWhomItIsAbout) {
    const EvidenceScreen sheet = leftover().sheet("orphan:7");
    EXPECT_FALSE(sheet.isGone);
    EXPECT_EQ(sheet.name, "a.js");
    EXPECT_EQ(sheet.sentence, "Left running 2 h after its window closed.");
    EXPECT_EQ(sheet.verdict, VerdictFace(Tone::safe));
    EXPECT_EQ(sheet.closeLabel, "Close");
    EXPECT_EQ(sheet.accessible, "a.js. Left running 2 h after its window closed. Verdict: safe");
}

TEST(EvidenceScreen, TheTreeIsDrawnRootFirstAndHeavierChildrenFirst) {
    const EvidenceScreen sheet = leftover().sheet("orphan:7");
    const auto* tree = row(sheet, "Tree");
    ASSERT_TRUE(tree);
    ASSERT_EQ(tree->tree.size(), 3u);
    EXPECT_EQ(tree->tree[0].id, 7);
    EXPECT_EQ(tree->tree[1].id, 9);
    EXPECT_EQ(tree->tree[1].depth, 1);
    EXPECT_EQ(tree->tree[2].id, 8);
    EXPECT_TRUE(tree->value.empty());
    EXPECT_TRUE(tree->more.empty());
    EXPECT_EQ(tree->accessible, "Tree") << "its lines are heard by themselves";
}

TEST(EvidenceScreen, ALongTreeIsCutAndTheRestCounted) {
    Scene scene = leftover();
    for (Pid pid = 20; pid < 33; ++pid) scene.procs.push_back(Making(pid, "/tmp/child").parent(9));
    const EvidenceScreen sheet = scene.sheet("orphan:7");
    EXPECT_EQ(row(sheet, "Tree")->tree.size(), 12u);
    EXPECT_EQ(row(sheet, "Tree")->more, "4 more");
}

TEST(EvidenceScreen, ATreeThatIsNotInTheReadingIsWritten) {
    Scene scene = leftover();
    scene.findings = {titled(finding("leftovers", KillTrees{{70, 71}}, MiB), "x", "2 processes · 3 h")};
    const EvidenceScreen sheet = scene.sheet("leftovers");
    EXPECT_EQ(row(sheet, "Tree")->value, "2 processes · 3 h");
    EXPECT_TRUE(row(sheet, "Tree")->tree.empty());
    EXPECT_EQ(row(sheet, "Tree")->accessible, "Tree: 2 processes · 3 h");
}

TEST(EvidenceScreen, TheOtherRowsSayWhyAndHow) {
    Scene scene = leftover();
    scene.findings[0].startedBy = "a Claude Code session";
    const EvidenceScreen sheet = scene.sheet("orphan:7");
    ASSERT_EQ(sheet.rows.size(), 4u);
    EXPECT_EQ(sheet.rows[0].accessible, "Started by: a Claude Code session");
    EXPECT_EQ(sheet.rows[2].label, "Why the safety check allows it");
    EXPECT_EQ(sheet.rows[3].value, "start time re-checked · TERM · 3 s · KILL · survivors named");
}

TEST(EvidenceScreen, AQuitHasEvidenceAndAVerdict) {
    Scene scene;
    scene.procs = {Making(7, "/Applications/Arc.app/x").mb(6000)};
    scene.findings = {titled(finding("browser:Arc", QuitApp{"Arc"}, MiB), "Arc", "6 GB")};
    const EvidenceScreen sheet = scene.sheet("browser:Arc");
    EXPECT_EQ(row(sheet, "Evidence")->value, "6 GB");
    EXPECT_EQ(sheet.verdict.word, "safe");
    EXPECT_FALSE(sheet.keep.has_value());
}

TEST(EvidenceScreen, AnOrphanCanBeKeptByItsWholeCommandLine) {
    const EvidenceScreen sheet = leftover().sheet("orphan:7");
    ASSERT_TRUE(sheet.keep);
    EXPECT_EQ(sheet.keep->label, "Keep this one running");
    EXPECT_EQ(sheet.keep->line, "Never in Free or Autopilot. Undo in Settings › Kept running.");
    EXPECT_EQ(sheet.keep->command, "node /tmp/a.js");
    EXPECT_TRUE(sheet.keep->isEnabled);
}

TEST(EvidenceScreen, WhatIsKeptAlreadyCannotBeKeptAgain) {
    Scene scene = leftover();
    scene.findings[0] = forbidden(scene.findings[0], std::string(Plain::keptReason));
    const EvidenceScreen sheet = scene.sheet("orphan:7");
    EXPECT_EQ(sheet.sentence, "You asked Ravik to keep this running.");
    ASSERT_TRUE(sheet.keep);
    EXPECT_FALSE(sheet.keep->isEnabled);
}

TEST(EvidenceScreen, OnlyAnOrphanThatIsThereCanBeKept) {
    Scene scene = leftover();
    scene.procs.push_back(Making(10, ""));
    scene.findings = {finding("hog:7", KillTrees{{7}}), finding("orphan:70", KillTrees{{70}}),
                      finding("orphan:7x", KillTrees{{7}}), finding("orphan:10", KillTrees{{10}})};
    for (const Finding& each : scene.findings) EXPECT_FALSE(scene.sheet(each.id).keep.has_value()) << each.id;
}

TEST(EvidenceScreen, WhatEndedMeanwhileIsSaidToBeGone) {
    const EvidenceScreen sheet = leftover().sheet("orphan:70");
    EXPECT_TRUE(sheet.isGone);
    EXPECT_EQ(sheet.name, "Already gone");
    EXPECT_EQ(sheet.sentence, "This one ended or changed since you opened it.");
    EXPECT_TRUE(sheet.rows.empty());
    EXPECT_FALSE(sheet.keep.has_value());
    EXPECT_EQ(sheet.closeLabel, "Close");
}

}  // namespace ravik
