#pragma once

#include "Core/Host/Host.h"
#include "Tests/Fakes/FakeDesktop.h"
#include "Tests/Fakes/FakeLoop.h"

namespace ravik::fakes {

/// A whole computer in memory.
struct FakeMachine {
    FakeClock clock;
    FakeLoop loop{clock};
    FakeProcesses processes{clock};
    FakeReadings readings;
    FakeServices services;
    FakeWorkspace workspace{clock};
    FakeNotifier notifier;
    FakeDefaults defaults;
    FakeTrash trash;
    FakeWatchLock watchLock;
    FakeArchive archive;
    FakeCrashReports crashReports;
    FakeFileViewer fileViewer;
    FakeDesktopApp desktopApp;
    FakeAppearance appearance;
    FakeLoginItem loginItem;
    Folders folders;
    Platform platform{processes,  readings,   processes,  processes, services,  workspace, notifier,
                      defaults,   trash,      loop,       clock,     watchLock, archive,   crashReports,
                      fileViewer, desktopApp, appearance, loginItem, folders};

    /// This user's machine; the program itself is pid 50.
    Host host{HostKind::linux, 1000, 50, {1}, {}};
};

}  // namespace ravik::fakes
