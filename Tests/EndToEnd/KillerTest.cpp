#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <set>

#include <sys/wait.h>
#include <unistd.h>

#include "Core/Ending/Killer.h"
#include "Core/Watch/Monitor.h"
#include "Core/Watch/ProcessScanner.h"
#include "Platform/Linux/Clock.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Platform/Linux/PidfdSignals.h"
#include "Tests/EndToEnd/Support.h"
#include "Tests/EndToEnd/Victims.h"
#include "Tests/Platform/Support/ChildWork.h"

namespace ravik::endtoend {
namespace {

using platform::readProc;
using platform::waitUntil;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double grace = 3.0;
constexpr double settle = 0.2;
/// Microseconds; the kernel stamps starts to the hundredth of a second, in which no computer goes round all its pids.
constexpr useconds_t stampWidth = 20'000;
/// What a busy computer may add.
constexpr double slack = 1.0;

/// Killer on processes of this computer, read by its own table and reached by its own signals.
class RealKiller : public EndToEnd {
protected:
    void SetUp() override {
        EndToEnd::SetUp();
        host.uid = geteuid();
        host.pid = getpid();
        ASSERT_NE(host.uid, platform::somebodyElse);
    }
    /// One that is seen to, however the test ends.
    Life* begin(Nature nature, const std::function<void()>& first = {}, Pid pid = 0) {
        Life* life = lives.begin(nature, first, pid);
        if (life) reaper.add(life->pid);
        return life;
    }
    std::vector<Proc> scan() { return ProcessScanner(table, clock).scan(); }
    Pids killTree(const Life& root, const std::vector<Proc>& procs, double seconds = grace) {
        const double begun = clock.monotonic();
        Pids survivors = Killer::killTree(root.pid, procs, seconds, host, signals);
        took = clock.monotonic() - begun;
        return survivors;
    }
    EndResult end(const Life& root, const std::vector<Proc>& procs) {
        return Monitor::end({root.pid}, procs, false, host, table, signals);
    }
    int statusOf(const Life& life) const {
        int status = 0;
        return waitpid(life.pid, &status, WNOHANG) == life.pid ? status : -1;
    }
    /// Everything that the test began and that still lives.
    std::set<Pid> living() const {
        std::set<Pid> pids;
        for (std::size_t at = 0; at < lives.count(); ++at) {
            if (readProc(lives.at(at).pid)) pids.insert(lives.at(at).pid);
        }
        return pids;
    }
    void TearDown() override {
        for (std::size_t at = 0; at < lives.count(); ++at) reaper.add(lives.at(at).pid);
        EndToEnd::TearDown();
    }

    /// In a process: only root can make it another user's.
    static void becomeAnother() {
        if (geteuid() == 0 && setuid(platform::somebodyElse) != 0) _exit(1);
    }
    /// For everyone else its record says so, and the kernel would not even stand in the way of a signal.
    static std::vector<Proc> asAnothers(const Life& life, std::vector<Proc> procs) {
        for (Proc& proc : procs) {
            if (proc.id != life.pid) continue;
            EXPECT_TRUE(geteuid() != 0 || proc.uid == platform::somebodyElse);
            proc.uid = platform::somebodyElse;
        }
        return procs;
    }

    Host host{HostKind::linux, 0, 0, {1}, {}};
    platform::SystemClock clock;
    platform::LinuxProcessTable table{clock};
    platform::PidfdSignals signals;
    Lives lives{64};
    double took = 0;
};

TEST_F(RealKiller, EndsATreeThreeLevelsDeepPolitely) {
    const Life* root = begin(Nature::polite, [&] {
        lives.begin(Nature::polite, [&] { lives.begin(Nature::polite, [&] { lives.begin(Nature::polite); }); });
        lives.begin(Nature::polite);
    });
    ASSERT_EQ(lives.count(), 5u);
    EXPECT_THAT(killTree(*root, scan()), IsEmpty());
    for (std::size_t at = 0; at < lives.count(); ++at) {
        EXPECT_EQ(lives.at(at).terms, 1) << at;
        EXPECT_EQ(lives.at(at).end, Life::ended) << at;
    }
    EXPECT_GE(took, settle);
    EXPECT_LT(took, settle + slack);
}

TEST_F(RealKiller, KillsWhatIgnoresTheSignalAfterTheGrace) {
    const Life* root = begin(Nature::stubborn, [&] { lives.begin(Nature::polite); });
    EXPECT_THAT(killTree(*root, scan(), 0.5), IsEmpty());
    EXPECT_EQ(root->terms, 1);
    EXPECT_EQ(lives.at(1).end, Life::ended);
    const int status = statusOf(*root);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
    EXPECT_GE(took, 0.5 + settle);
    EXPECT_LT(took, 0.5 + settle + slack);
}

TEST_F(RealKiller, KillsChildrenThatIgnoreTheSignalWhenTheirParentHasGone) {
    const Life* root = begin(Nature::polite, [&] { lives.begin(Nature::stubborn); });
    EXPECT_THAT(killTree(*root, scan(), 0.3), IsEmpty());
    EXPECT_EQ(root->end, Life::ended);
    EXPECT_EQ(lives.at(1).terms, 1);
    EXPECT_EQ(lives.at(1).end, Life::none);
    EXPECT_THAT(living(), IsEmpty());
}

TEST_F(RealKiller, WithoutAGraceKillsAtOnce) {
    const Life* root = begin(Nature::stubborn);
    EXPECT_THAT(killTree(*root, scan(), 0), IsEmpty());
    EXPECT_LT(took, settle + slack);
    const int status = statusOf(*root);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
}

TEST_F(RealKiller, EndsAStoppedTreePolitely) {
    const Life* root = begin(Nature::polite, [&] { lives.begin(Nature::polite); });
    for (std::size_t at = 0; at < 2; ++at) kill(lives.at(at).pid, SIGSTOP);
    const std::vector<Proc> procs = scan();
    ASSERT_TRUE(waitUntil([&] {
        return std::ranges::count_if(procs, [&](const Proc& proc) {
                   const auto process = signals.verify(proc);
                   return process && signals.stopped(*process);
               }) == 2;
    }));
    EXPECT_THAT(killTree(*root, procs), IsEmpty());
    EXPECT_EQ(root->end, Life::ended);
    EXPECT_EQ(lives.at(1).end, Life::ended);
    EXPECT_LT(took, settle + slack);
}

TEST_F(RealKiller, WaitsAsLongAsTheLastTargetTakes) {
    const Life* root = begin(Nature::polite, [&] { lives.begin(Nature::slow); });
    EXPECT_THAT(killTree(*root, scan()), IsEmpty());
    EXPECT_EQ(lives.at(1).end, Life::ended);
    EXPECT_GE(took, slowSeconds + settle);
    EXPECT_LT(took, slowSeconds + settle + slack);
}

TEST_F(RealKiller, ZombieThatNobodyReapsHasGone) {
    const Life* root = begin(Nature::polite);
    EXPECT_THAT(killTree(*root, scan()), IsEmpty());
    EXPECT_LT(took, settle + slack);
    EXPECT_EQ(kill(root->pid, 0), 0) << "its parent, the test, has not reaped it";
    EXPECT_TRUE(WIFEXITED(statusOf(*root)));
}

TEST_F(RealKiller, LeavesAnotherUsersChildAlone) {
    const Life* root = begin(Nature::polite, [&] { lives.begin(Nature::polite, becomeAnother); });
    const Life& child = lives.at(1);
    EXPECT_THAT(killTree(*root, asAnothers(child, scan())), IsEmpty());
    EXPECT_EQ(root->end, Life::ended);
    EXPECT_EQ(child.terms, 0);
    EXPECT_THAT(living(), ElementsAre(child.pid.load()));
}

TEST_F(RealKiller, LeavesAnotherUsersRootAndItsChildrenAlone) {
    const Life* root = begin(Nature::polite, [&] {
        lives.begin(Nature::polite);
        becomeAnother();
    });
    const std::vector<Proc> procs = asAnothers(*root, scan());
    EXPECT_THAT(killTree(*root, procs), ElementsAre(root->pid.load()));
    const EndResult result = end(*root, procs);
    ASSERT_TRUE(std::holds_alternative<Refused>(result));
    EXPECT_EQ(std::get<Refused>(result).reason, "[65534] ravik-end-to-end-tests is not yours: listed, never ended");
    EXPECT_EQ(root->terms + lives.at(1).terms, 0);
    EXPECT_EQ(living().size(), 2u);
}

TEST_F(RealKiller, LeavesWhatATargetStartsWhileItEndsAlone) {
    const Life* root = begin(Nature::forks, [&] { lives.begin(Nature::forks); });
    EXPECT_THAT(killTree(*root, scan()), IsEmpty());
    EXPECT_EQ(root->end, Life::ended);
    EXPECT_EQ(lives.at(1).end, Life::ended);
    ASSERT_EQ(lives.count(), 4u);
    EXPECT_EQ(lives.at(2).terms + lives.at(3).terms, 0);
    EXPECT_EQ(living().size(), 2u);
}

TEST_F(RealKiller, LeavesAStrangerWithTheRootsPidAlone) {
    const Life* root = begin(Nature::polite, [&] { lives.begin(Nature::polite); });
    const std::vector<Proc> procs = scan();
    usleep(stampWidth);
    reaper.end(root->pid);
    const Life* stranger = begin(Nature::polite, {}, root->pid);
    ASSERT_NE(stranger, nullptr) << "its pid cannot be chosen";
    ASSERT_EQ(stranger->pid, root->pid);
    EXPECT_THAT(killTree(*root, procs), IsEmpty());
    const EndResult result = end(*root, procs);
    EXPECT_EQ(result, EndResult(Ended{}));
    EXPECT_EQ(stranger->terms, 0);
    EXPECT_EQ(lives.at(1).terms, 0);
    EXPECT_EQ(living().size(), 2u);
}

TEST_F(RealKiller, LeavesAStrangerWithAChildsPidAlone) {
    const Life* root = begin(Nature::polite, [&] {
        signal(SIGCHLD, SIG_IGN);
        lives.begin(Nature::polite);
    });
    const Pid child = lives.at(1).pid;
    const std::vector<Proc> procs = scan();
    usleep(stampWidth);
    Lives::ask(lives.at(1));
    Life* stranger = nullptr;
    ASSERT_TRUE(waitUntil([&] { return (stranger = begin(Nature::polite, {}, child)) != nullptr; }));
    EXPECT_EQ(end(*root, procs), EndResult(Ended{}));
    EXPECT_EQ(root->end, Life::ended);
    EXPECT_EQ(stranger->terms, 0);
    EXPECT_TRUE(readProc(child));
}

}  // namespace
}  // namespace ravik::endtoend
