// A paused program comes back the moment its window gets the focus, on a real X server.
#include <gtest/gtest.h>

#include <unistd.h>

#include "Core/Autopilot/Approvals.h"
#include "Core/Watch/Monitor.h"
#include "Platform/Linux/DesktopWorkspace.h"
#include "Platform/Linux/LinuxLevers.h"
#include "Platform/Linux/PidfdSignals.h"
#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"
#include "Tests/Platform/Support/Desktop.h"
#include "Tests/Platform/Support/LeverScene.h"
#include "Tests/Platform/Support/XClient.h"

namespace ravik::platform {
namespace {

using fakes::FakeMachine;

std::string name(Pid pid) { return "app " + std::to_string(pid); }

/// A watcher with a real desktop and real levers, on an otherwise imagined machine that is short of memory.
class FocusRelease : public testing::Test {
protected:
    FocusRelease() : manager(server) {
        WorkspaceOptions options;
        options.groupOf = [](Pid pid) { return std::optional(name(pid)); };
        workspace = makeWorkspace(std::move(options), {.display = server.display()});
    }
    void SetUp() override {
        ASSERT_TRUE(manager.started());
        ASSERT_TRUE(turnUntil([&] { return workspace->knowsFocus(); }));
    }

    /// A terminal in a session of its own, as a desktop starts one, with a program in it that waits.
    Pid openTerminal() {
        const Pid pid = reaper.add(startProgram({"setsid", "xterm", "-e", "sleep", "600"}, {server.variable()}));
        EXPECT_TRUE(turnUntil([&] { return workspace->frontmost() == name(pid); }));
        return pid;
    }
    Snapshot shortOfMemory(Pid pid) const {
        Snapshot snapshot;
        snapshot.processes = readProcs({pid});
        snapshot.groups = {{name(pid), 300ull << 20, 0, snapshot.processes}};
        snapshot.stats.memoryFreePercent = 10;
        return snapshot;
    }

    OwnXServer server;
    OwnWindowManager manager;
    Reaper reaper;
    fakes::TemporaryFolder home;
    PidfdSignals signals;
    std::unique_ptr<Workspace> workspace;
};

}  // namespace

TEST_F(FocusRelease, APausedTerminalIsResumedAtOnce) {
    const Pid terminal = openTerminal();
    const Pid other = startXClient(server.display(), OnClose::quit, reaper);
    ASSERT_TRUE(turnUntil([&] { return workspace->frontmost() == name(other); }));

    FakeMachine machine;
    LeverOptions options;
    options.folder = home.path() / "ravik";
    options.uid = geteuid();
    options.self = getpid();
    options.now = [&] { return machine.clock.now(); };
    LinuxLevers levers(signals, options);
    Platform platform{machine.processes,
                      machine.readings,
                      signals,
                      levers,
                      machine.services,
                      *workspace,
                      machine.notifier,
                      machine.defaults,
                      machine.trash,
                      machine.loop,
                      machine.clock,
                      machine.watchLock,
                      machine.archive,
                      machine.crashReports,
                      machine.fileViewer,
                      machine.desktopApp,
                      machine.appearance,
                      machine.loginItem,
                      machine.folders};
    fakes::LogFolder log{machine.clock};
    Monitor monitor(platform, log.log, machine.host, Monitor::Role::watcher);
    monitor.watchFocus();
    Approvals(machine.defaults).setActions({Decision::Action::pause});

    machine.clock.advance(31 * 60);
    monitor.runEngine(shortOfMemory(terminal), {}, machine.clock.now());
    ASSERT_EQ(monitor.live().size(), 1u);
    EXPECT_EQ(monitor.live()[0].pids, Pids{terminal});
    ASSERT_TRUE(waitUntil([&] { return stateOf(terminal) == 'T'; }));

    // The other window goes, and the window manager gives the focus back. No tick comes in between.
    reaper.end(other);
    EXPECT_TRUE(turnUntil([&] { return monitor.live().empty(); }));
    EXPECT_TRUE(waitUntil([&] { return stateOf(terminal) == 'S'; }));
    const auto released = log.lines("autopilotRelease");
    ASSERT_EQ(released.size(), 1u);
    EXPECT_EQ(released[0]["target"], name(terminal));
    EXPECT_EQ(released[0]["why"], "focused");
    EXPECT_FALSE(std::filesystem::exists(home.path() / "ravik" / "levers.json"));
}

}  // namespace ravik::platform
