#include <gtest/gtest.h>

#include "Core/Diagnosis/Diagnoser.h"
#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using fakes::macHost;
using fakes::Making;

namespace {

Finding ending(Pids pids) {
    Finding finding;
    finding.id = "orphan:7";
    finding.severity = Finding::Severity::critical;
    finding.title = "title";
    finding.evidence = "evidence";
    finding.remedy = KillTrees{std::move(pids)};
    finding.gainBytes = 99;
    finding.caution = "set by the cause";
    finding.startedBy = "somebody";
    return finding;
}

/// What the gate makes of a finding that it forbids.
Finding refused(const Finding& finding, std::string advice, std::string reason) {
    Finding copy = finding;
    copy.severity = Finding::Severity::info;
    copy.remedy = Advice{std::move(advice)};
    copy.gainBytes = 0;
    copy.caution = {};
    copy.neverReason = std::move(reason);
    return copy;
}

Finding kept(const Finding& finding) {
    return refused(finding, "Remove it from Settings › Kept running to let Free end it again.",
                   "on your Keep list — you asked Ravik to leave it running");
}

Finding gate(const Finding& finding, const std::vector<Proc>& procs, const KeepSet& keep = {}) {
    return Diagnoser::gate(finding, ProcessIndex(procs), keep, macHost());
}

}  // namespace

TEST(Gate, LeavesASafeFindingAsItIs) { EXPECT_EQ(gate(ending({7}), {Making(7, "/opt/x")}), ending({7})); }

TEST(Gate, JudgesOnlyWhatEndsSomething) {
    Finding quit = ending({});
    quit.remedy = QuitApp{"App"};
    EXPECT_EQ(gate(quit, {Making(7, "/opt/git")}, {"/opt/git"}), quit);
}

TEST(Gate, AForbiddenTreeKeepsItsPlaceAndLosesItsRemedy) {
    EXPECT_EQ(gate(ending({7}), {Making(7, "/opt/x"), Making(8, "/opt/rsync a b").parent(7)}),
              refused(ending({7}), "Stop it from where it was started.", "a file copy in progress (rsync, pid 8)"));
}

TEST(Gate, AWarningReplacesThatOfTheCause) {
    Finding warned = ending({7});
    warned.caution = "x is actively working (12% CPU)";
    EXPECT_EQ(gate(ending({7}), {Making(7, "/opt/x").cpu(12)}), warned);
}

TEST(Gate, AKeptProcessIsNotOffered) {
    EXPECT_EQ(gate(ending({7}), {Making(7, "/opt/x --a")}, {"/opt/x --a"}), kept(ending({7})));
    EXPECT_EQ(gate(ending({7}), {Making(7, "/opt/x --b")}, {"/opt/x --a"}), ending({7}));
}

TEST(Gate, TheKeepListGoesBeforeTheSafetyCheck) {
    EXPECT_EQ(gate(ending({7}), {Making(7, "/opt/git gc")}, {"/opt/git gc"}), kept(ending({7})));
}

TEST(Gate, OneKeptOfTwoGoesOnToTheSafetyCheck) {
    const std::vector<Proc> procs{Making(7, "/opt/x"), Making(8, "/opt/y")};
    EXPECT_EQ(gate(ending({7, 8}), procs, {"/opt/x"}), ending({7, 8}));
    EXPECT_EQ(gate(ending({7, 8}), procs, {"/opt/x", "/opt/y"}), kept(ending({7, 8})));
    EXPECT_EQ(gate(ending({7, 9}), procs, {"/opt/x", "/opt/y"}), ending({7, 9}));
}

TEST(Gate, NoPidsCountAsAllKeptWhereAnythingIsKept) {
    EXPECT_EQ(gate(ending({}), {}, {"/opt/x"}), kept(ending({})));
    EXPECT_EQ(gate(ending({}), {}), ending({}));
}

TEST(Gate, SeveralTreesAreJudgedInTheOrderOfTheirPids) {
    const std::vector<Proc> procs{Making(7, "/opt/go x"), Making(8, "/opt/a"), Making(9, "/opt/clang").parent(8)};
    EXPECT_EQ(gate(ending({8, 7}), procs).neverReason, "a build in progress (clang, pid 9)");
    EXPECT_EQ(gate(ending({7, 8}), procs).neverReason, "a Go build in progress (go, pid 7)");
    const std::vector<Proc> busy{Making(7, "/opt/x").cpu(6), Making(8, "/opt/a"), Making(9, "/opt/y").parent(8).cpu(8)};
    EXPECT_EQ(gate(ending({8, 7}), busy).caution, "y is actively working (8% CPU)");
    EXPECT_EQ(gate(ending({7, 8}), busy).caution, "x is actively working (6% CPU)");
}

TEST(Gate, AForbiddenProcessInALaterTreeForbidsAll) {
    const std::vector<Proc> procs{Making(7, "/opt/a").cpu(50), Making(8, "/opt/git").parent(10), Making(10, "/opt/b")};
    EXPECT_EQ(gate(ending({7, 10}), procs).neverReason, "a git operation in progress (git, pid 8)");
}

TEST(Gate, OverlappingTreesAreJudgedOnce) {
    const std::vector<Proc> procs{Making(7, "/opt/a"), Making(8, "/opt/b").parent(7).cpu(7),
                                  Making(9, "/opt/git").parent(8)};
    EXPECT_EQ(gate(ending({8, 7}), procs).neverReason, "a git operation in progress (git, pid 9)");
    EXPECT_EQ(gate(ending({9, 7, 8}), procs).neverReason, "a git operation in progress (git, pid 9)");
}

}  // namespace ravik
