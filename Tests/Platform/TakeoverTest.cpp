#include <gtest/gtest.h>
#include <unistd.h>

#include "Core/Watch/Monitor.h"
#include "Platform/Linux/WatcherLock.h"
#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"
#include "Tests/Fakes/TemporaryFolder.h"
#include "Tests/Platform/Support/Children.h"

namespace ravik::platform {

using namespace fakes;

/// The app started while another process watches, which is then killed.
TEST(Takeover, FollowsTheEndOfTheOtherProcess) {
    fakes::TemporaryFolder folder;
    Reaper reaper;
    PidPipe held;
    const Pid other = reaper.add(forkChild([&] {
        WatcherLock lock(folder.path() / "ravik", "ravik watch", geteuid());
        if (lock.acquire()) _exit(1);
        held.tell(getpid());
        while (true) pause();
    }));
    ASSERT_EQ(held.hear(), other);

    FakeMachine machine;
    WatcherLock own(folder.path() / "ravik", "Ravik", geteuid());
    Platform platform{machine.processes,  machine.readings,     machine.processes,  machine.processes,
                      machine.services,   machine.workspace,    machine.notifier,   machine.defaults,
                      machine.trash,      machine.loop,         machine.clock,      own,
                      machine.archive,    machine.crashReports, machine.fileViewer, machine.desktopApp,
                      machine.appearance, machine.loginItem,    machine.folders};
    LogFolder log{machine.clock};
    const auto refusal = own.acquire();
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->holder, other);
    Monitor monitor(platform, log.log, machine.host, Monitor::Role::reader);
    monitor.takeOverWhenFree();
    monitor.start();
    machine.loop.runFor(60);
    EXPECT_EQ(monitor.role(), Monitor::Role::reader);
    EXPECT_EQ(monitor.history().size(), 13u);
    EXPECT_TRUE(log.lines().empty());

    reaper.end(other);
    machine.loop.runFor(5);
    EXPECT_EQ(monitor.role(), Monitor::Role::watcher);
    EXPECT_EQ(log.lines("tick").size(), 1u);
    WatcherLock third(folder.path() / "ravik", "ravik watch", geteuid());
    EXPECT_EQ(third.acquire()->holder, getpid());
}

}  // namespace ravik::platform
