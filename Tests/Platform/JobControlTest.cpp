#include "Platform/Linux/JobControl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

namespace ravik::platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t me = 1000;
constexpr Pid self = 10;

JobStat job(Pid pid, Pid ppid, Pid group, Pid session) {
    JobStat one;
    one.pid = pid;
    one.ppid = ppid;
    one.group = group;
    one.session = session;
    one.state = 'S';
    one.startTicks = static_cast<std::uint64_t>(pid);
    one.uid = me;
    return one;
}

JobStat onTerminal(JobStat one, Pid foreground) {
    one.terminal = 34816;
    one.foreground = foreground;
    return one;
}

Pids pids(const std::vector<JobStat>& jobs) {
    Pids found;
    for (const JobStat& one : jobs) found.push_back(one.pid);
    return found;
}

Pids stopped(const std::vector<JobStat>& all, const PidSet& wanted) { return pids(stoppable(all, wanted, me, self)); }

}  // namespace

TEST(JobControl, ReadsGroupsSessionsAndTerminals) {
    const auto one =
        parseJobStat("812 (a) b) (c) T 7 810 809 34816 811 4194560 1 2 3 4 5 6 7 8 20 0 1 0 998877 9 9 9\n");
    ASSERT_TRUE(one);
    EXPECT_EQ(one->pid, 812);
    EXPECT_EQ(one->ppid, 7);
    EXPECT_EQ(one->group, 810);
    EXPECT_EQ(one->session, 809);
    EXPECT_EQ(one->terminal, 34816);
    EXPECT_EQ(one->foreground, 811);
    EXPECT_EQ(one->state, 'T');
    EXPECT_EQ(one->startTicks, 998877u);
    EXPECT_TRUE(one->isStopped());
}

TEST(JobControl, ATextThatIsCutIsNone) {
    const std::string whole = "812 (x) S 7 810 809 0 -1 4194560 1 2 3 4 5 6 7 8 20 0 1 0 5";
    ASSERT_TRUE(parseJobStat(whole));
    EXPECT_EQ(parseJobStat(whole)->foreground, -1);
    for (std::size_t size = 0; size < whole.size(); ++size) EXPECT_FALSE(parseJobStat(whole.substr(0, size))) << size;
}

TEST(JobControl, FindsThisProcess) {
    const auto jobs = readJobs("/proc");
    const auto own = std::ranges::find(jobs, getpid(), &JobStat::pid);
    ASSERT_NE(own, jobs.end());
    EXPECT_EQ(own->ppid, getppid());
    EXPECT_EQ(own->group, getpgrp());
    EXPECT_EQ(own->session, getsid(0));
    EXPECT_EQ(own->uid, geteuid());
}

TEST(JobControl, AGroupIsTakenWholeParentsFirst) {
    const std::vector<JobStat> all{job(21, 20, 20, 20), job(20, 1, 20, 20), job(30, 1, 30, 30)};
    EXPECT_THAT(stopped(all, {20, 21}), ElementsAre(20, 21));
    EXPECT_THAT(stopped(all, {21}), IsEmpty());
    EXPECT_THAT(stopped(all, {21, 30}), ElementsAre(30));
}

TEST(JobControl, AMemberThatHasEndedDoesNotCount) {
    std::vector<JobStat> all{job(20, 1, 20, 20), job(21, 20, 20, 20)};
    all[1].state = 'Z';
    EXPECT_THAT(stopped(all, {20}), ElementsAre(20));
}

TEST(JobControl, AGroupWithAStoppedOrTracedMemberIsLeftAsItIs) {
    for (const char state : {'T', 't'}) {
        std::vector<JobStat> all{job(20, 1, 20, 20), job(21, 20, 20, 20)};
        all[1].state = state;
        EXPECT_THAT(stopped(all, {20, 21}), IsEmpty());
    }
}

TEST(JobControl, AnotherUsersGroupIsLeftAlone) {
    std::vector<JobStat> all{job(20, 1, 20, 20), job(21, 20, 20, 20)};
    all[1].uid = 0;
    EXPECT_THAT(stopped(all, {20, 21}), IsEmpty());
}

TEST(JobControl, AGroupBeyondThisNamespaceIsLeftAlone) { EXPECT_THAT(stopped({job(20, 1, 0, 0)}, {20}), IsEmpty()); }

TEST(JobControl, TheProgramAndWhatItWasStartedFromAreNeverStopped) {
    const std::vector<JobStat> all{job(5, 1, 5, 5), job(6, 5, 6, 5), job(self, 6, 10, 5), job(11, self, 11, 5)};
    EXPECT_THAT(stopped(all, {5, 6, self, 11}), ElementsAre(11));
}

TEST(JobControl, ATerminalsForegroundJobAndItsShellAreNeverStopped) {
    // A shell (20), a job in the foreground (30, 31) and one in the background (40).
    const std::vector<JobStat> all{onTerminal(job(20, 1, 20, 20), 30), onTerminal(job(30, 20, 30, 20), 30),
                                   onTerminal(job(31, 30, 30, 20), 30), onTerminal(job(40, 20, 40, 20), 30)};
    EXPECT_THAT(stopped(all, {20, 30, 31, 40}), ElementsAre(40));
}

TEST(JobControl, AShellIsNeverStoppedWhoeverItsTerminalBelongsToNow) {
    // The job in front has lost its parents; the shell still waits behind it.
    const std::vector<JobStat> all{onTerminal(job(20, 1, 20, 20), 30), onTerminal(job(30, 1, 30, 20), 30)};
    EXPECT_THAT(stopped(all, {20, 30}), IsEmpty());
}

TEST(JobControl, AShellWithinAShellIsNeverStoppedWhileItsJobRuns) {
    const std::vector<JobStat> all{onTerminal(job(20, 1, 20, 20), 40), onTerminal(job(30, 20, 30, 20), 40),
                                   onTerminal(job(40, 30, 40, 20), 40)};
    EXPECT_THAT(stopped(all, {20, 30, 40}), IsEmpty());
}

TEST(JobControl, WhatTheTerminalItselfIsStartedFromMayBeStopped) {
    // The terminal program has no terminal of its own.
    const std::vector<JobStat> all{job(15, 1, 15, 15), onTerminal(job(20, 15, 20, 20), 20)};
    EXPECT_THAT(stopped(all, {15}), ElementsAre(15));
}

TEST(JobControl, ParentsInARingEndTheWalk) {
    const std::vector<JobStat> all{onTerminal(job(20, 21, 20, 9), 20), onTerminal(job(21, 20, 21, 9), 20)};
    EXPECT_THAT(stopped(all, {20, 21}), IsEmpty());
}

}  // namespace ravik::platform
