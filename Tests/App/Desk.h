#pragma once

#include <QGuiApplication>
#include <QQuickWindow>

#include <gtest/gtest.h>

#include "App/Views/Program.h"
#include "Tests/Fakes/FakeAsker.h"
#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik::app {

/// A program for windows to stand in, on a machine in memory.
class Desk : public testing::Test {
protected:
    /// The windows on view whose title this is.
    static QList<QQuickWindow*> shown(const QString& title) {
        QList<QQuickWindow*> found;
        for (auto* window : QGuiApplication::topLevelWindows()) {
            auto* quick = qobject_cast<QQuickWindow*>(window);
            if (quick && quick->isVisible() && quick->title() == title) found.append(quick);
        }
        return found;
    }
    /// The one window on view whose title this is; null if there is none, or more.
    static QQuickWindow* theWindow(const QString& title) {
        const auto windows = shown(title);
        return windows.size() == 1 ? windows.first() : nullptr;
    }

    fakes::FakeMachine machine;
    fakes::LogFolder folder{machine.clock};
    Monitor monitor{machine.platform, folder.log, machine.host, Monitor::Role::reader};
    fakes::FakeAsker asker;
    Nav nav{folder.log, {Destination::diagnosis}};
    DiskModel disk{machine.platform, folder.log, machine.host.kind, asker};
    HistoryModel history{machine.loop, machine.folders.log, machine.folders.historyCache};
    Actions actions{monitor, asker};
    const Program program{monitor, nav, actions, disk, history, asker, {}, [] {}, [] {}, [] {}};
};

}  // namespace ravik::app
