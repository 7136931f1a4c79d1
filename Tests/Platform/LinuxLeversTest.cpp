#include "Platform/Linux/LinuxLevers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include <pty.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include "Core/Base/ReplaceFile.h"
#include "Platform/Linux/Autogroups.h"
#include "Platform/Linux/PidfdSignals.h"
#include "Platform/Linux/ReadFile.h"
#include "Tests/Fakes/TemporaryFolder.h"
#include "Tests/Platform/Support/Children.h"
#include "Tests/Platform/Support/Desktop.h"
#include "Tests/Platform/Support/FakeUserManager.h"
#include "Tests/Platform/Support/LeverScene.h"

namespace ravik::platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Time someTime = 1'760'000'000;

LeverOptions optionsIn(const std::filesystem::path& folder) {
    LeverOptions options;
    options.folder = folder / "ravik";
    options.uid = geteuid();
    options.self = getpid();
    options.now = [] { return someTime; };
    return options;
}

/// Levers of a program that runs in a child.
struct OwnLevers {
    fakes::TemporaryFolder home;
    PidfdSignals signals;
    LinuxLevers levers{signals, optionsIn(home.path())};
};

/// Levers of a program that keeps its notes in a folder of the test's own.
class LinuxLeversTest : public testing::Test {
protected:
    /// As the next start of the program would make them.
    LinuxLevers make() const { return {signals, optionsIn(home.path())}; }
    bool hasNotes() const { return std::filesystem::exists(home.path() / "ravik" / "levers.json"); }
    Pid sleeper() { return reaper.add(startSleeper()); }

    /// Shows a process in a unit of its own under this user's service manager, whoever has it in truth.
    LeverOptions inAUnit(Pid pid, const OwnBus& bus) const {
        const std::string number = std::to_string(pid);
        home.write("proc/" + number + "/cgroup", "0::/" + slice + "/" + unit + "\n");
        for (const char* file : {"stat", "task", "autogroup"}) {
            std::filesystem::create_symlink("/proc/" + number + "/" + file, home.path() / "proc" / number / file);
        }
        home.write("cgroup/" + service + "/cgroup.controllers", "cpu\n");
        home.write("cgroup/" + slice + "/" + unit + "/cgroup.procs", number + "\n");
        home.write("cgroup/" + slice + "/" + unit + "/cpu.weight", "100\n");
        home.write("cgroup/" + slice + "/" + unit + "/cpu.idle", "0\n");
        LeverOptions options = optionsIn(home.path());
        options.procRoot = (home.path() / "proc").native();
        options.cgroupRoot = (home.path() / "cgroup").native();
        options.bus = bus.address();
        return options;
    }
    const std::string service = "user.slice/user@" + std::to_string(geteuid()) + ".service";
    const std::string slice = service + "/app.slice";
    const std::string unit = "app-foo-1.scope";

    fakes::TemporaryFolder home;
    PidfdSignals signals;
    Reaper reaper;
};

std::string shown(Pid pid) {
    return policyOf(pid) + ", " + ioClassOf(pid) + ", " + std::to_string(autogroupNice(pid).value_or(0)) + "; ";
}

/// It works or waits, and is neither stopped nor gone.
bool isAwake(Pid pid) { return std::string("RSD").find(stateOf(pid)) != std::string::npos; }

/// What a demotion by autogroup looks like where the kernel heeds them; else there is no lever.
std::string lowered() { return heedsAutogroup("/proc", "/sys/fs/cgroup", getpid()) ? "other, idle, 19; " : ""; }

}  // namespace

TEST_F(LinuxLeversTest, APausedProcessStandsStillUntilItIsResumed) {
    const Pid pid = sleeper();
    auto levers = make();
    EXPECT_THAT(levers.pause("Foo", readProcs({pid})), ElementsAre(pid));
    EXPECT_TRUE(waitUntil([&] { return stateOf(pid) == 'T'; }));
    EXPECT_TRUE(hasNotes());
    levers.resume({pid});
    EXPECT_TRUE(waitUntil([&] { return stateOf(pid) == 'S'; }));
    EXPECT_FALSE(hasNotes());
}

TEST_F(LinuxLeversTest, TheNotesSayWhatTheyMustBeforeItIsDone) {
    const Pid pid = sleeper();
    const auto proc = readProc(pid);
    auto levers = make();
    levers.pause("Foo", {*proc});
    const auto page = parsePage(readFile((home.path() / "ravik" / "levers.json").native()).value_or(""));
    ASSERT_TRUE(page);
    EXPECT_EQ(page->boot + "\n", readFile("/proc/sys/kernel/random/boot_id"));
    ASSERT_EQ(page->records.size(), 1u);
    EXPECT_EQ(page->records[0].action, "pause");
    EXPECT_EQ(page->records[0].target, "Foo");
    EXPECT_EQ(page->records[0].at, someTime);
    EXPECT_EQ(page->records[0].processes, (std::vector{HeldProcess{pid, proc->startTicks, {}}}));
}

TEST_F(LinuxLeversTest, WhatCannotBeWrittenDownIsNotDone) {
    const Pid pid = sleeper();
    home.write("ravik", "a file in the folder's place");
    auto levers = make();
    EXPECT_THAT(levers.pause("Foo", readProcs({pid})), IsEmpty());
    EXPECT_THAT(levers.demote("Foo", readProcs({pid})), IsEmpty());
    EXPECT_TRUE(isAwake(pid));
    EXPECT_EQ(shown(pid), "other, none, 0; ");
}

TEST_F(LinuxLeversTest, AReusedPidIsNotTouched) {
    const Pid pid = sleeper();
    Proc other = *readProc(pid);
    other.startTicks -= 1;
    auto levers = make();
    EXPECT_THAT(levers.pause("Foo", {other}), IsEmpty());
    EXPECT_THAT(levers.demote("Foo", {other}), IsEmpty());
    EXPECT_TRUE(isAwake(pid));
    EXPECT_EQ(shown(pid), "other, none, 0; ");
    EXPECT_FALSE(hasNotes());
}

TEST_F(LinuxLeversTest, AnotherUsersProcessIsNotTouched) {
    const Pid pid = sleeper();
    Proc proc = *readProc(pid);
    proc.uid += 1;
    auto levers = make();
    EXPECT_THAT(levers.pause("Foo", {proc}), IsEmpty());
    EXPECT_THAT(levers.demote("Foo", {proc}), IsEmpty());
}

TEST_F(LinuxLeversTest, TheTestsOwnGroupIsNeverPaused) {
    const Pid pid = reaper.add(startSleeperBeside());
    auto levers = make();
    EXPECT_THAT(levers.pause("Foo", readProcs({pid, getpid()})), IsEmpty());
    EXPECT_TRUE(isAwake(pid));
}

TEST_F(LinuxLeversTest, WhatTheUserStoppedBeforeStaysStopped) {
    const Pid pid = sleeper();
    kill(pid, SIGSTOP);
    ASSERT_TRUE(waitUntil([&] { return stateOf(pid) == 'T'; }));
    auto levers = make();
    EXPECT_THAT(levers.pause("Foo", readProcs({pid})), IsEmpty());
    levers.resume({pid});
    EXPECT_EQ(stateOf(pid), 'T');
}

TEST_F(LinuxLeversTest, ResumingOneTargetLeavesAnotherPaused) {
    const Pid first = sleeper();
    const Pid second = sleeper();
    auto levers = make();
    levers.pause("Foo", readProcs({first}));
    levers.pause("Bar", readProcs({second}));
    ASSERT_TRUE(waitUntil([&] { return stateOf(first) == 'T' && stateOf(second) == 'T'; }));
    levers.restore({second});
    EXPECT_EQ(stateOf(second), 'T');
    levers.resume({first});
    EXPECT_TRUE(waitUntil([&] { return stateOf(first) == 'S'; }));
    EXPECT_EQ(stateOf(second), 'T');
    EXPECT_TRUE(hasNotes());
}

TEST_F(LinuxLeversTest, ATerminalsForegroundJobAndItsShellAreRefused) {
    PidPipe pipe;
    int terminal = -1;
    const Pid shell = reaper.add(forkpty(&terminal, nullptr, nullptr, nullptr));
    ASSERT_GE(shell, 0);
    if (shell == 0) {
        signal(SIGTTOU, SIG_IGN);
        for (const bool inFront : {true, false}) {
            const Pid job = forkChild([] {
                for (;;) pause();
            });
            setpgid(job, job);
            if (inFront) tcsetpgrp(STDIN_FILENO, job);
            pipe.tell(job);
        }
        for (;;) pause();
    }
    const Pid inFront = reaper.add(pipe.hear());
    const Pid behind = reaper.add(pipe.hear());
    ASSERT_GT(behind, 0);

    auto levers = make();
    EXPECT_THAT(levers.pause("job", readProcs({inFront})), IsEmpty());
    EXPECT_THAT(levers.pause("shell", readProcs({shell})), IsEmpty());
    EXPECT_THAT(levers.pause("all", readProcs({shell, inFront, behind})), ElementsAre(behind));
    EXPECT_TRUE(waitUntil([&] { return stateOf(behind) == 'T'; }));
    EXPECT_TRUE(isAwake(inFront));
    EXPECT_TRUE(isAwake(shell));
    // The job comes back, and the terminal is still the other one's.
    levers.resume({behind});
    EXPECT_TRUE(waitUntil([&] { return stateOf(behind) == 'S'; }));
    EXPECT_EQ(tcgetpgrp(terminal), inFront);
    close(terminal);
}

TEST_F(LinuxLeversTest, AnOrdinaryUserDemotesASessionAndBringsItBack) {
    const std::string seen = asOrdinaryUser([] {
        OwnLevers own;
        const Pid pid = startSleeper();
        std::string said = shown(pid);
        const Pids demoted = own.levers.demote("Foo", readProcs({pid}));
        if (!demoted.empty()) said += shown(pid);
        own.levers.restore(demoted);
        said += shown(pid);
        kill(pid, SIGKILL);
        return said;
    });
    EXPECT_EQ(seen, "other, none, 0; " + lowered() + "other, none, 0; ");
}

TEST_F(LinuxLeversTest, WithoutAWayBackThereIsNoLever) {
    // The session is shared, and the limit of an ordinary user does not allow to leave the idle policy again.
    const std::string seen = asOrdinaryUser([] {
        OwnLevers own;
        const Pid pid = startSleeperBeside();
        const Pids demoted = own.levers.demote("Foo", readProcs({pid}));
        std::string said = std::to_string(demoted.size()) + " " + shown(pid);
        kill(pid, SIGKILL);
        return said;
    });
    EXPECT_EQ(seen, "0 other, none, " + std::to_string(autogroupNice(getpid()).value_or(0)) + "; ");
}

TEST_F(LinuxLeversTest, WhereTheLimitAllowsTheWayBackThreadsGetTheIdlePolicy) {
    // Few machines let a test raise that limit, so the process is shown with one that stands in a file. A privileged
    // user's test can then really go there and back.
    const Pid pid = reaper.add(startSleeperBeside());
    const std::string real = "/proc/" + std::to_string(pid);
    const auto folder = home.path() / "proc" / std::to_string(pid);
    const int needed = 20 - getpriority(PRIO_PROCESS, 0);
    const auto tryWith = [&](int limit) {
        home.write(folder / "limits", "Max nice priority         " + std::to_string(limit) + "                   40\n");
        LeverOptions options = optionsIn(home.path());
        options.procRoot = (home.path() / "proc").native();
        LinuxLevers levers(signals, options);
        const Pids demoted = levers.demote("Foo", readProcs({pid}));
        std::string said = policyOf(pid) + " " + ioClassOf(pid);
        levers.restore(demoted);
        return said + ", " + policyOf(pid) + " " + ioClassOf(pid);
    };
    std::filesystem::create_directories(folder);
    for (const char* file : {"stat", "task"}) std::filesystem::create_symlink(real + "/" + file, folder / file);
    EXPECT_EQ(tryWith(needed - 1), "other none, other none");
    if (geteuid() == 0) {
        EXPECT_EQ(tryWith(needed), "idle idle, other none");
        EXPECT_FALSE(hasNotes());
    }
}

TEST_F(LinuxLeversTest, AnApplicationsOwnUnitComesFirstAndIsBroughtBackByTheNextStart) {
    const Pid pid = sleeper();
    const OwnBus bus;
    const FakeUserManager manager(bus.address(), (home.path() / "cgroup" / slice).native());
    const LeverOptions options = inAUnit(pid, bus);
    const auto kernel = [&](const char* file) {
        return readFile((home.path() / "cgroup" / slice / unit / file).native()).value_or("");
    };

    EXPECT_THAT(LinuxLevers(signals, options).demote("Foo", readProcs({pid})), ElementsAre(pid));
    EXPECT_EQ(kernel("cpu.idle"), "1\n");
    EXPECT_EQ(shown(pid), "other, idle, 0; ");
    EXPECT_EQ(LinuxLevers(signals, options).releaseLeftovers().size(), 1u);
    EXPECT_EQ(kernel("cpu.idle"), "0\n");
    EXPECT_EQ(kernel("cpu.weight"), "100\n");
    EXPECT_EQ(shown(pid), "other, none, 0; ");
    EXPECT_FALSE(hasNotes());
}

TEST_F(LinuxLeversTest, AUnitThatDoesNotObeyIsNoLeverAndNothingStaysBehind) {
    const Pid pid = sleeper();
    const OwnBus bus;
    FakeUserManager manager(bus.address(), (home.path() / "cgroup" / slice).native());
    manager.ignoreChanges();
    const LeverOptions options = inAUnit(pid, bus);
    EXPECT_THAT(LinuxLevers(signals, options).demote("Foo", readProcs({pid})), IsEmpty());
    EXPECT_EQ(shown(pid), "other, none, 0; ");
    EXPECT_FALSE(hasNotes());
}

TEST_F(LinuxLeversTest, WhatIsStartedMeanwhileIsBroughtBackToo) {
    const std::string seen = asOrdinaryUser([] {
        OwnLevers own;
        PidPipe pipe;
        // Starts a child when it is asked to, and stands for its session.
        const Pid parent = forkChild([&] {
            setsid();
            signal(SIGUSR1, [](int) {});
            sigset_t asked;
            sigemptyset(&asked);
            sigaddset(&asked, SIGUSR1);
            sigprocmask(SIG_BLOCK, &asked, nullptr);
            pipe.tell(getpid());
            int number = 0;
            sigwait(&asked, &number);
            pipe.tell(forkChild([] {
                for (;;) pause();
            }));
            for (;;) pause();
        });
        pipe.hear();
        const Pids demoted = own.levers.demote("Foo", readProcs({parent}));
        kill(parent, SIGUSR1);
        const Pid child = pipe.hear();
        std::string said = demoted.empty() ? "" : shown(child);
        own.levers.restore(demoted);
        said += shown(parent) + shown(child);
        kill(child, SIGKILL);
        kill(parent, SIGKILL);
        return said;
    });
    EXPECT_EQ(seen, lowered() + "other, none, 0; other, none, 0; ");
}

TEST_F(LinuxLeversTest, WhatAProgramThatWasKilledHeldIsReleasedByTheNext) {
    const Pid paused = sleeper();
    const Pid demoted = sleeper();
    const auto targets = readProcs({paused, demoted});
    PidPipe pipe;
    const Pid program = reaper.add(forkChild([&] {
        auto levers = make();
        levers.pause("Foo", {targets[0]});
        pipe.tell(static_cast<Pid>(1 + levers.demote("Bar", {targets[1]}).size()));
        for (;;) pause();
    }));
    const bool hasDemotion = pipe.hear() == 2;
    EXPECT_EQ(hasDemotion, !lowered().empty());
    ASSERT_TRUE(waitUntil([&] { return stateOf(paused) == 'T'; }));
    EXPECT_EQ(shown(demoted), hasDemotion ? lowered() : "other, none, 0; ");
    reaper.end(program);
    EXPECT_EQ(stateOf(paused), 'T');

    auto next = make();
    const auto released = next.releaseLeftovers();
    ASSERT_EQ(released.size(), hasDemotion ? 2u : 1u);
    EXPECT_EQ(released[0].action, "pause");
    EXPECT_EQ(released[0].target, "Foo");
    EXPECT_THAT(released[0].pids, ElementsAre(paused));
    EXPECT_EQ(released[0].at, someTime);
    if (hasDemotion) {
        EXPECT_EQ(released[1].action, "demote");
        EXPECT_EQ(released[1].target, "Bar");
        EXPECT_THAT(released[1].pids, ElementsAre(demoted));
    }
    EXPECT_TRUE(waitUntil([&] { return stateOf(paused) == 'S'; }));
    EXPECT_EQ(shown(demoted), "other, none, 0; ");
    EXPECT_FALSE(hasNotes());
    EXPECT_TRUE(next.releaseLeftovers().empty());
}

TEST_F(LinuxLeversTest, NotesOfAProcessWhosePidIsAnothersByNowReleaseNothing) {
    const Pid pid = sleeper();
    kill(pid, SIGSTOP);
    ASSERT_TRUE(waitUntil([&] { return stateOf(pid) == 'T'; }));
    std::string boot = readFile("/proc/sys/kernel/random/boot_id").value_or("");
    boot.pop_back();
    const auto note = [&](const std::string& fromBoot, std::uint64_t ticks) {
        LeverRecord record;
        record.id = 1;
        record.action = "pause";
        record.target = "Foo";
        record.processes = {{pid, ticks, {}}};
        home.write("ravik/levers.json", writePage({fromBoot, {record}}));
        std::filesystem::permissions(home.path() / "ravik", std::filesystem::perms::owner_all);
    };
    const std::uint64_t ticks = readProc(pid)->startTicks;
    note(boot, ticks + 1);
    EXPECT_TRUE(make().releaseLeftovers().empty());
    EXPECT_EQ(stateOf(pid), 'T');
    note("00000000-0000-0000-0000-000000000000", ticks);
    EXPECT_TRUE(make().releaseLeftovers().empty());
    EXPECT_EQ(stateOf(pid), 'T');
    note(boot, ticks);
    EXPECT_EQ(make().releaseLeftovers().size(), 1u);
    EXPECT_TRUE(waitUntil([&] { return stateOf(pid) == 'S'; }));
}

TEST_F(LinuxLeversTest, TheProgramsOwnActionsAreNoLeftovers) {
    const Pid pid = sleeper();
    auto levers = make();
    levers.pause("Foo", readProcs({pid}));
    ASSERT_TRUE(waitUntil([&] { return stateOf(pid) == 'T'; }));
    EXPECT_TRUE(levers.releaseLeftovers().empty());
    EXPECT_EQ(stateOf(pid), 'T');
    levers.resume({pid});
}

TEST_F(LinuxLeversTest, WhatHasEndedMeanwhileIsForgotten) {
    const Pid pid = sleeper();
    auto levers = make();
    ASSERT_THAT(levers.pause("Foo", readProcs({pid})), ElementsAre(pid));
    reaper.end(pid);
    levers.resume({pid});
    EXPECT_FALSE(hasNotes());
}

}  // namespace ravik::platform
