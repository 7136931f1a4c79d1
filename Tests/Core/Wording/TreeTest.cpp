#include "Core/Wording/Tree.h"

#include <gtest/gtest.h>

#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using namespace fakes;

namespace {

std::vector<TreeLine> lines(const Pids& roots, const std::vector<Proc>& procs, std::size_t cap = 50) {
    return Tree::lines(roots, ProcessIndex(procs), cap, macHost());
}

Pids ids(const std::vector<TreeLine>& lines) {
    Pids found;
    for (const TreeLine& line : lines) found.push_back(line.id);
    return found;
}

}  // namespace

TEST(Tree, ParentsStandBeforeTheirChildrenHeaviestFirst) {
    const std::vector<Proc> procs{Making(7, "node /srv/a.js").mb(3), Making(8, "b").parent(7).mb(1),
                                  Making(9, "c").parent(7).mb(2), Making(10, "d").parent(9).mb(9)};
    const std::vector<TreeLine> expected{{7, 0, true, "node: a.js · pid 7", "3\u00a0MB"},
                                         {9, 1, false, "c · pid 9", "2\u00a0MB"},
                                         {10, 2, true, "d · pid 10", "9\u00a0MB"},
                                         {8, 1, true, "b · pid 8", "1\u00a0MB"}};
    EXPECT_EQ(lines({7}, procs), expected);
}

TEST(Tree, TheCapKeepsTheRootAndTheHeaviest) {
    std::vector<Proc> procs{Making(1, "root")};
    for (Pid pid = 2; pid <= 10; ++pid) procs.push_back(Making(pid, "x").parent(1).mb(static_cast<std::uint64_t>(pid)));
    EXPECT_EQ(ids(lines({1}, procs, 3)), (Pids{1, 10, 9}));
    EXPECT_TRUE(lines({1}, procs, 0).empty());
}

TEST(Tree, EqualChildrenKeepTheOrderOfTheList) {
    EXPECT_EQ(ids(lines({7}, {Making(9, "x").parent(7), Making(8, "x").parent(7), Making(7, "r")})), (Pids{7, 9, 8}));
}

TEST(Tree, ARootThatHasGoneHasNoLine) {
    EXPECT_EQ(ids(lines({99, 7}, {Making(7, "x"), Making(8, "y").parent(99)})), (Pids{7}));
}

TEST(Tree, ACycleEndsAtItsRoot) {
    EXPECT_EQ(ids(lines({7}, {Making(7, "x").parent(8), Making(8, "y").parent(7)})), (Pids{7, 8}));
    EXPECT_EQ(ids(lines({7}, {Making(7, "x").parent(7)})), (Pids{7}));
}

}  // namespace ravik
