#include <gtest/gtest.h>

#include "Core/Diagnosis/Classifier.h"
#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using fakes::macHost;
using fakes::Making;

namespace {

std::vector<AgentSession> sessions(const std::vector<Proc>& procs, const std::vector<Proc>& orphans = {}) {
    return Classifier::sessions(ProcessIndex(procs), orphans, macHost());
}

}  // namespace

TEST(Sessions, NoToolAndNoLeftoverMakeNone) {
    EXPECT_TRUE(sessions({Making(7, "/Users/me/bin/backup.sh")}, {Making(7, "/Users/me/bin/backup.sh")}).empty());
}

TEST(Sessions, AToolHasItsWholeTreeRootFirst) {
    const auto found =
        sessions({Making(13, "c").parent(12).mb(1), Making(12, "b").parent(11).mb(2), Making(11, "claude").mb(4),
                  Making(14, "d").parent(11).mb(8), Making(15, "e").parent(12).mb(16), Making(16, "other").mb(32)});
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].id, 11);
    EXPECT_EQ(found[0].tool, "claude");
    EXPECT_TRUE(found[0].alive);
    EXPECT_EQ(fakes::pids(found[0].members), (Pids{11, 12, 13, 15, 14}));
    EXPECT_EQ(found[0].footprintBytes(), 31 * fakes::MiB);
}

TEST(Sessions, AToolBelowAnotherToolIsASessionToo) {
    const auto found = sessions({Making(11, "claude"), Making(12, "codex").parent(11), Making(13, "x").parent(12)});
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(fakes::pids(found[0].members), (Pids{11, 12, 13}));
    EXPECT_EQ(fakes::pids(found[1].members), (Pids{12, 13}));
}

TEST(Sessions, AnotherUsersToolIsNone) { EXPECT_TRUE(sessions({Making(11, "claude").uid(502)}).empty()); }

TEST(Sessions, LeftoversStandLastInARecordOfTheirOwn) {
    const Proc server = Making(20, "/Users/me/.npm/_npx/abc/node_modules/.bin/mcp-server").parent(1);
    const Proc script = Making(21, "/Users/me/bin/backup.sh").parent(1);
    const auto found = sessions({server, script, Making(11, "claude")}, {server, script});
    ASSERT_EQ(found.size(), 2u);
    EXPECT_TRUE(found[0].alive);
    EXPECT_EQ(found[1].id, -1);
    EXPECT_EQ(found[1].tool, "ended sessions");
    EXPECT_FALSE(found[1].alive);
    EXPECT_EQ(fakes::pids(found[1].members), (Pids{20}));
}

TEST(Sessions, AYoungLeftoverIsNotReportedYet) {
    fakes::Machine machine;
    machine.procs = {Making(20, "/Users/me/.npm/_npx/a/mcp-server").parent(1).age(5 * fakes::minute)};
    EXPECT_TRUE(machine.snapshot().sessions.empty());
    machine.procs = {Making(20, "/Users/me/.npm/_npx/a/mcp-server").parent(1).age(65 * fakes::minute)};
    EXPECT_EQ(machine.snapshot().sessions.size(), 1u);
}

TEST(Sessions, AWalkEndsWhereItMeetsItsRootAgain) {
    const auto found = sessions({Making(11, "claude").parent(13), Making(12, "x").parent(11),
                                 Making(13, "y").parent(12), Making(30, "codex").parent(30)});
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(fakes::pids(found[0].members), (Pids{11, 12, 13}));
    EXPECT_EQ(fakes::pids(found[1].members), (Pids{30}));
}

TEST(Sessions, AVeryDeepTreeDoesNotOverflow) {
    std::vector<Proc> procs{Making(1000, "claude")};
    for (Pid pid = 1001; pid < 41000; ++pid) procs.push_back(Making(pid, "x").parent(pid - 1));
    const auto found = sessions(procs);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].members.size(), 40000u);
}

}  // namespace ravik
