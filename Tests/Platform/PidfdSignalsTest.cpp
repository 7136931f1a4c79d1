#include "Platform/Linux/PidfdSignals.h"

#include <csignal>
#include <functional>
#include <iostream>
#include <type_traits>

#include <sys/resource.h>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include "Platform/Linux/BootTime.h"
#include "Platform/Linux/Clock.h"
#include "Platform/Linux/ReadFile.h"
#include "Tests/Platform/Support/ChildWork.h"
#include "Tests/Platform/Support/Children.h"

namespace ravik::platform {

namespace {

// No one but the identity test makes what a signal takes.
static_assert(!std::is_constructible_v<VerifiedProcess, Pid, std::shared_ptr<const VerifiedProcess::Handle>>);
static_assert(!std::is_default_constructible_v<VerifiedProcess>);

void waitForSignals() {
    while (true) pause();
}

std::optional<Proc> recordOf(Pid pid) {
    const auto stat = readFile("/proc/" + std::to_string(pid) + "/stat");
    const auto stamp = stat ? parseStartStamp(*stat) : std::nullopt;
    if (!stamp) return {};
    Proc proc;
    proc.id = pid;
    proc.startTicks = stamp->ticks;
    proc.started = startedAt(stamp->ticks);
    return proc;
}

char stateOf(Pid pid) {
    const auto stat = readFile("/proc/" + std::to_string(pid) + "/stat");
    const auto stamp = stat ? parseStartStamp(*stat) : std::nullopt;
    return stamp ? stamp->state : 0;
}

bool reaches(const std::function<bool()>& condition) {
    for (int tries = 0; tries < 1000 && !condition(); ++tries) usleep(5000);
    return condition();
}

double secondsOf(const std::function<void()>& work) {
    const double begun = SystemClock().monotonic();
    work();
    return SystemClock().monotonic() - begun;
}

class PidfdSigns : public ::testing::TestWithParam<PidfdSignals::Use> {
protected:
    Pid start(const std::function<void()>& body = waitForSignals) { return reaper.add(forkChild(body)); }

    Reaper reaper;
    PidfdSignals signals{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(PidfdSignals, PidfdSigns,
                         ::testing::Values(PidfdSignals::Use::wherePossible, PidfdSignals::Use::never),
                         [](const auto& use) {
                             return use.param == PidfdSignals::Use::never ? "WithoutDescriptors" : "WithDescriptors";
                         });

}  // namespace

TEST_P(PidfdSigns, ProvesTheProcessOfTheRecord) {
    const Pid child = start();
    Proc record = *recordOf(child);
    EXPECT_NEAR(record.started, SystemClock().now(), 3);
    const auto process = signals.verify(record);
    ASSERT_TRUE(process);
    EXPECT_EQ(process->pid(), child);
    EXPECT_TRUE(signals.alive(*process));

    record.started += 0.9;
    EXPECT_TRUE(signals.verify(record)) << "a start is compared in whole seconds";
    record.startTicks = 0;
    EXPECT_TRUE(signals.verify(record)) << "a record need not hold the kernel's own stamp";
}

TEST_P(PidfdSigns, AnotherStartIsAnotherProcess) {
    const Pid child = start();
    Proc record = *recordOf(child);
    record.started -= 1;
    EXPECT_FALSE(signals.verify(record));
    record.started += 2;
    EXPECT_FALSE(signals.verify(record));
    record = *recordOf(child);
    record.startTicks += 1;
    EXPECT_FALSE(signals.verify(record));
    EXPECT_TRUE(signals.verify(*recordOf(child)));
}

TEST_P(PidfdSigns, NoProcessHasNoPid) {
    for (const Pid pid : {0, -1, -getpid(), 0x7fffffff}) {
        Proc record = *recordOf(getpid());
        record.id = pid;
        EXPECT_FALSE(signals.verify(record)) << pid;
    }
}

TEST_P(PidfdSigns, EndsWhatHearsTheSignal) {
    const Pid child = start();
    const auto process = signals.verify(*recordOf(child));
    ASSERT_TRUE(process);
    EXPECT_TRUE(signals.send(*process, Signal::terminate));
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    EXPECT_FALSE(signals.alive(*process));
    EXPECT_FALSE(signals.send(*process, Signal::kill));
}

TEST_P(PidfdSigns, ZombieHasGone) {
    const Pid child = start([] { _exit(0); });
    ASSERT_TRUE(reaches([&] { return stateOf(child) == 'Z'; }));
    EXPECT_FALSE(signals.verify(*recordOf(child)));
}

TEST_P(PidfdSigns, WaitEndsAtOnceWhenTheLastIsAZombieThatNobodyReaps) {
    std::vector<VerifiedProcess> processes;
    for (int n = 0; n < 3; ++n) processes.push_back(*signals.verify(*recordOf(start())));
    for (const auto& process : processes) EXPECT_TRUE(signals.send(process, Signal::terminate));
    EXPECT_LT(secondsOf([&] { signals.waitForExit(processes, 60); }), 5);
    for (const auto& process : processes) {
        EXPECT_FALSE(signals.alive(process));
        EXPECT_EQ(stateOf(process.pid()), 'Z');
    }
}

TEST_P(PidfdSigns, WaitLastsAsLongAsOneLives) {
    const auto stays = signals.verify(*recordOf(start()));
    const auto leaves = signals.verify(*recordOf(start()));
    ASSERT_TRUE(stays && leaves);
    signals.send(*leaves, Signal::kill);
    const std::vector<VerifiedProcess> both{*stays, *leaves};
    const double waited = secondsOf([&] { signals.waitForExit(both, 0.3); });
    EXPECT_GE(waited, 0.29);
    EXPECT_LT(waited, 5);
    EXPECT_TRUE(signals.alive(*stays));
    EXPECT_LT(secondsOf([&] { signals.waitForExit(both, 0); }), 0.2);
    EXPECT_LT(secondsOf([&] { signals.waitForExit({}, 60); }), 0.2);
}

TEST_P(PidfdSigns, StoppedTargetHearsTermOnceItIsContinued) {
    const Pid child = start();
    const auto process = signals.verify(*recordOf(child));
    ASSERT_TRUE(process);
    EXPECT_FALSE(signals.stopped(*process));
    EXPECT_TRUE(signals.send(*process, Signal::stop));
    ASSERT_TRUE(reaches([&] { return signals.stopped(*process); }));
    EXPECT_TRUE(signals.verify(*recordOf(child))) << "what is stopped still lives";

    EXPECT_TRUE(signals.send(*process, Signal::terminate));
    signals.sleep(0.05);
    EXPECT_TRUE(signals.alive(*process));
    EXPECT_TRUE(signals.send(*process, Signal::resume));
    signals.waitForExit({&*process, 1}, 20);
    EXPECT_FALSE(signals.alive(*process));
    EXPECT_FALSE(signals.stopped(*process));
}

TEST_P(PidfdSigns, KillReachesWhatIgnoresTerm) {
    const Pid child = start([] {
        signal(SIGTERM, SIG_IGN);
        waitForSignals();
    });
    ASSERT_TRUE(reaches([&] {
        const auto status = readFile("/proc/" + std::to_string(child) + "/status");
        const auto at = status ? status->find("SigIgn:") : std::string::npos;
        return at != std::string::npos && (std::stoull(status->substr(at + 7), nullptr, 16) >> (SIGTERM - 1) & 1) != 0;
    }));
    const auto process = signals.verify(*recordOf(child));
    ASSERT_TRUE(process);
    EXPECT_TRUE(signals.send(*process, Signal::terminate));
    signals.waitForExit({&*process, 1}, 0.2);
    EXPECT_TRUE(signals.alive(*process));
    EXPECT_TRUE(signals.send(*process, Signal::kill));
    signals.waitForExit({&*process, 1}, 20);
    EXPECT_FALSE(signals.alive(*process));
}

TEST_P(PidfdSigns, LeavesAReusedPidAlone) {
    const int status = amongOwnPids([this] {
        constexpr pid_t pid = 300;
        if (forkWithPid(pid) != pid) return notAllowed;
        const Proc record = *recordOf(pid);
        const auto process = signals.verify(record);
        if (!process) return 1;
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        usleep(50'000);  // some ticks of the kernel's clock

        if (forkWithPid(pid) != pid) return notAllowed;
        if (signals.alive(*process)) return 2;
        if (signals.send(*process, Signal::kill)) return 3;
        if (signals.verify(record)) return 4;
        signals.waitForExit({&*process, 1}, 20);
        usleep(50'000);
        return waitpid(pid, nullptr, WNOHANG) == 0 ? 0 : 5;
    });
    if (status == notAllowed) {
        std::cout << "pids cannot be chosen here; the stamps alone were tried\n";
        return;
    }
    EXPECT_EQ(status, 0);
}

TEST_P(PidfdSigns, RefusedSignalIsNoSuccess) {
    const Pid child = start();
    const Proc record = *recordOf(child);
    EXPECT_EQ(unprivileged([&] {
                  if (getuid() != somebodyElse) return 0;
                  const auto process = signals.verify(record);
                  if (!process) return 1;
                  return signals.send(*process, Signal::kill) ? 2 : 0;
              }),
              0);
    EXPECT_TRUE(signals.verify(record));
}

TEST_P(PidfdSigns, GivesItsDescriptorsBack) {
    const Pid child = start();
    const int before = openDescriptors();
    for (int n = 0; n < 50; ++n) {
        const auto process = signals.verify(*recordOf(child));
        ASSERT_TRUE(process);
        const VerifiedProcess copy = *process;
        EXPECT_EQ(copy.pid(), child);
        EXPECT_EQ(openDescriptors(), before + (GetParam() == PidfdSignals::Use::never ? 0 : 1));
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_P(PidfdSigns, WithoutAFreeDescriptorThereIsNoProofAndNoSignal) {
    const Pid child = start();
    const Proc record = *recordOf(child);
    EXPECT_EQ(inChild([&] {
                  if (!signals.verify(record)) return 2;
                  const rlimit none{0, 0};
                  setrlimit(RLIMIT_NOFILE, &none);
                  return signals.verify(record) ? 1 : 0;
              }),
              0);
}

TEST_P(PidfdSigns, SleepsAsLongAsItIsTold) {
    EXPECT_GE(secondsOf([&] { signals.sleep(0.05); }), 0.05);
    EXPECT_LT(secondsOf([&] { signals.sleep(0); }), 0.05);
    EXPECT_LT(secondsOf([&] { signals.sleep(-3); }), 0.05);
}

}  // namespace ravik::platform
