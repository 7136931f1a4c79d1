#include "Platform/Linux/ProcParse.h"

#include <gtest/gtest.h>

namespace ravik::platform {

namespace {

constexpr std::string_view bashStat =
    "2411 (bash) S 2400 2411 2411 34816 2411 4194304 5153 38420 0 12 17 9 54 33 20 0 1 0 918273 9003008 1323 "
    "18446744073709551615 94330000000000 94330000900000 140729000000000 0 0 0 65536 3670020 1266777851 1 0 0 17 1 0 0 "
    "0 0 0 94330001000000 94330001050000 94330030000000 140729000000100 140729000000200 140729000000200 "
    "140729000000300 0\n";

std::string withName(std::string_view name) {
    std::string text(bashStat);
    return text.replace(text.find("bash"), 4, name);
}

}  // namespace

TEST(ProcStat, ReadsTheFieldsThatAreUsed) {
    const auto stat = parseProcStat(bashStat);
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->comm, "bash");
    EXPECT_EQ(stat->state, 'S');
    EXPECT_EQ(stat->ppid, 2400);
    EXPECT_EQ(stat->flags, 4194304U);
    EXPECT_EQ(stat->userTime, 17U);
    EXPECT_EQ(stat->systemTime, 9U);
    EXPECT_EQ(stat->startTicks, 918273U);
    EXPECT_EQ(stat->residentPages, 1323);
    EXPECT_EQ(stat->image, 140729000000000U);
    EXPECT_FALSE(stat->hasEnded());
    EXPECT_FALSE(stat->isKernelThread());
    EXPECT_EQ(stat->cpuNanoseconds(100), 260'000'000U);
}

TEST(ProcStat, NoNewlineAtTheEndIsNoMatter) {
    std::string text(bashStat);
    text.pop_back();
    ASSERT_TRUE(parseProcStat(text));
    EXPECT_EQ(parseProcStat(text)->startTicks, 918273U);
}

TEST(ProcStat, TheNameEndsAtTheLastParenthesis) {
    const std::string tricky = withName("a) R 1 (b");
    const auto stat = parseProcStat(tricky);
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->comm, "a) R 1 (b");
    EXPECT_EQ(stat->ppid, 2400);
}

TEST(ProcStat, TheNameMayHoldLineEndsAndNothing) {
    EXPECT_EQ(parseProcStat(withName("x\n) S 7"))->ppid, 2400);
    EXPECT_EQ(parseProcStat(withName(""))->comm, "");
}

TEST(ProcStat, KnowsZombiesAndKernelThreads) {
    const auto zombie = parseProcStat(
        "9 (done) Z 1 9 9 0 -1 4227148 0 0 0 0 3 4 0 0 20 0 1 0 500 0 0 18446744073709551615 0 0 0 0 0 0");
    ASSERT_TRUE(zombie);
    EXPECT_TRUE(zombie->hasEnded());
    EXPECT_EQ(zombie->image, 0U);
    const auto thread = parseProcStat(
        "12 (kworker/0:1-events) I 2 0 0 0 -1 69238880 0 0 0 0 0 0 0 0 20 0 1 0 22 0 0 18446744073709551615 0 0 0");
    ASSERT_TRUE(thread);
    EXPECT_TRUE(thread->isKernelThread());
}

TEST(ProcStat, ATextCutShortIsNone) {
    EXPECT_FALSE(parseProcStat(""));
    EXPECT_FALSE(parseProcStat("12"));
    EXPECT_FALSE(parseProcStat("12 (bash"));
    EXPECT_FALSE(parseProcStat("12 )bash( S 1"));
    EXPECT_FALSE(parseProcStat("12 (bash)"));
    EXPECT_FALSE(parseProcStat("12 (bash) S"));
    EXPECT_FALSE(parseProcStat("12 (bash) S x 1 1 0 -1 0"));
    EXPECT_FALSE(parseProcStat(bashStat.substr(0, bashStat.find(" 918273"))));
}

TEST(ProcStatm, CountsWhatOnlyTheProcessHolds) {
    const auto statm = parseProcStatm("2198 1323 846 233 0 527 0\n");
    ASSERT_TRUE(statm);
    EXPECT_EQ(statm->anonymous(), 477U);
    EXPECT_TRUE(statm->hasMemory());
}

TEST(ProcStatm, MoreSharedThanResidentIsNothing) { EXPECT_EQ(parseProcStatm("90 10 12")->anonymous(), 0U); }

TEST(ProcStatm, AZombieHasNoMemory) { EXPECT_FALSE(parseProcStatm("0 0 0 0 0 0 0\n")->hasMemory()); }

TEST(ProcStatm, ATextCutShortIsNone) {
    EXPECT_FALSE(parseProcStatm(""));
    EXPECT_FALSE(parseProcStatm("12 13"));
    EXPECT_FALSE(parseProcStatm("12 -1 3"));
}

TEST(ProcStatus, TellsTheSwappedPart) {
    EXPECT_EQ(parseVmSwap("Name:\tnode\nVmRSS:\t   80 kB\nVmSwap:\t    1536 kB\nThreads:\t1\n"), 1'572'864U);
    EXPECT_EQ(parseVmSwap("VmSwap:\t0 kB"), 0U);
}

TEST(ProcStatus, ANameThatLooksLikeTheLineIsNotTaken) {
    EXPECT_EQ(parseVmSwap("Name:\tVmSwap: 9\nVmSwap:\t2 kB\n"), 2048U);
    EXPECT_FALSE(parseVmSwap("Name:\tVmSwap: 9\nThreads:\t1\n"));
}

TEST(ProcSwaps, AddsAllAreasUp) {
    EXPECT_EQ(parseSwapUsed("Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n"
                            "/dev/dm-1                               partition\t8388604\t\t1024\t\t-2\n"
                            "/swap\\040file                           file\t\t2097148\t\t16\t\t-3\n"),
              1040U * 1024U);
    EXPECT_EQ(parseSwapUsed("Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n"), 0U);
    EXPECT_EQ(parseSwapUsed(""), 0U);
}

}  // namespace ravik::platform
