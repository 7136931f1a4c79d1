#include "Core/Wording/Words.h"

#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;
using Rows = std::vector<std::pair<std::string, std::string>>;

namespace {

std::string gap(std::vector<Finding> findings) {
    Snapshot snapshot;
    snapshot.findings = std::move(findings);
    return Words::gapLine(snapshot);
}

std::optional<std::string> label(const Finding& finding) {
    Machine machine;
    machine.procs = {Making(7, "a"),
                     Making(8, "b").parent(7),
                     Making(9, "c").parent(8),
                     Making(10, "d").parent(7),
                     Making(11, "e").parent(10),
                     Making(12, "f")};
    return Words::remedyLabel(finding, Cards(machine).index);
}

}  // namespace

TEST(Words, TheGapLineTellsWhatFreeLeavesUndone) {
    const Finding safe = finding("orphan:7", KillTrees{{7}});
    const Finding quit = finding("browser:Arc", QuitApp{"Arc"});
    EXPECT_EQ(gap({safe}), "Only what is safe. You confirm first.");
    EXPECT_EQ(gap({quit, safe, finding("holder:Foo", QuitApp{"Foo"})}),
              "Only what is safe. Quit Arc, Foo yourself for the rest.");
    EXPECT_EQ(gap({finding("disk", ScanDisk{}), cautioned(safe)}), "Nothing is safe to end in one click.");
    EXPECT_EQ(gap({quit}), "Quit Arc yourself to get it back.");
    EXPECT_EQ(gap({}), "Nothing is safe to end in one click.");
}

TEST(Words, TheButtonCountsWhatEnds) {
    EXPECT_EQ(label(finding("orphan:12", KillTrees{{12}})), "End…");
    EXPECT_EQ(label(finding("orphan:7", KillTrees{{7}})), "End 5…");
    EXPECT_EQ(label(finding("leftovers", KillTrees{{7, 10}})), "End 7…");
    EXPECT_EQ(label(finding("leftovers", KillTrees{{98, 99}})), "End 2…");
    EXPECT_EQ(label(finding("leftovers", KillTrees{})), "End…");
}

TEST(Words, QuitAndRestartHaveTheirOwnWord) {
    EXPECT_EQ(label(finding("browser:Arc", QuitApp{"Arc"})), "Quit…");
    EXPECT_EQ(label(titled(finding("holder:Cursor", KillTrees{{7}}), "", "extension host (pid 7) holds 2.5 GB")),
              "Restart…");
    EXPECT_EQ(label(titled(finding("orphan:7", KillTrees{{7}}), "", "extension host")), "End 5…");
    EXPECT_EQ(label(titled(finding("holder:x", KillTrees{{12}}), "", "1 process")), "End…");
}

TEST(Words, AdviceAndTheDiskScanHaveNoEndingButton) {
    EXPECT_EQ(label(finding("vm:Docker", Advice{"x"})), std::nullopt);
    EXPECT_EQ(label(finding("disk", ScanDisk{})), std::nullopt);
}

TEST(Words, EvidenceOfASafeTree) {
    Finding safe = titled(finding("orphan:7", KillTrees{{7}}), "x has run 2 h with no terminal", "pid 7 · 3 MB · x");
    safe.startedBy = "a terminal that has closed";
    EXPECT_EQ(Words::evidence(safe),
              (Rows{{"Started by", "a terminal that has closed"},
                    {"Tree", "pid 7 · 3 MB · x"},
                    {"Why the safety check allows it",
                     "Nothing in the tree is a database, a build, an install, an editor or an agent CLI, and nothing "
                     "in it is working hard (the caution line is 5% CPU)."},
                    {"How it ends", "start time re-checked · TERM · 3 s · KILL · survivors named"}}));
}

TEST(Words, EvidenceOfAnAutomationBrowserNamesItsProfile) {
    const Finding hidden = titled(
        finding("automation:7", KillTrees{{7}}),
        "A hidden automation Google Chrome from node has run 2 h — your own Google Chrome may not open", "pid 7");
    EXPECT_EQ(
        Words::evidence(hidden).at(0),
        (std::pair<std::string, std::string>{"Profile", "temporary — an automation instance, not your Google Chrome"}));
    EXPECT_EQ(Words::evidence(titled(hidden, "no such words"))[0].first, "Tree");
}

TEST(Words, EvidenceOfAQuitNamesTheApp) {
    EXPECT_EQ(Words::evidence(titled(finding("browser:Arc", QuitApp{"Arc"}), "t", "9 processes")),
              (Rows{{"Evidence", "9 processes"},
                    {"Why the safety check allows it",
                     "Quit is the gentle remedy: Arc gets the request and can ask you about unsaved work, so it is "
                     "per app and never part of Free."},
                    {"How it ends", "asks Arc to quit · waits up to 30 s · reports a refusal"}}));
}

TEST(Words, EvidenceOfWhatAsksStaysOrAdvises) {
    const auto row = [](const Finding& finding, std::size_t at) { return Words::evidence(finding).at(at); };
    using Row = std::pair<std::string, std::string>;
    EXPECT_EQ(row(cautioned(finding("orphan:7", KillTrees{{7}}), "x is actively working (9% CPU)"), 1),
              (Row{"Why it asks first",
                   "x is actively working (9% CPU). It may lose that work, so it gets its own "
                   "confirmation and is never part of Free."}));
    const Finding never = forbidden(finding("orphan:7"), "a git operation in progress (git, pid 7)");
    EXPECT_EQ(row(never, 0).first, "Evidence");
    EXPECT_EQ(row(never, 1), (Row{"Why it stays",
                                  "a git operation in progress (git, pid 7). Ravik never ends it "
                                  "from a button."}));
    EXPECT_EQ(row(never, 2), (Row{"What to do", "Stop it from where it was started."}));
    EXPECT_EQ(row(finding("disk", ScanDisk{}), 1),
              (Row{"Why no button", "This cause is yours to change; ending something would not fix it."}));
    EXPECT_EQ(row(finding("disk", ScanDisk{}), 2),
              (Row{"What to do", "Scan in Disk; what it finds moves to the Trash"}));
}

}  // namespace ravik
