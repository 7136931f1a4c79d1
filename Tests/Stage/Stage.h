#pragma once

#include <functional>
#include <memory>

#include <QQuickWindow>

#include "App/StatusBarController.h"
#include "Tests/Fakes/FakeComputer.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik::stage {

/// The whole desktop app on a machine in memory: real windows, whose time passes only when it is let. Made after the
/// application object, on the main thread; one at a time.
class Stage {
public:
    /// `furnish` puts onto the machine what is there at launch.
    explicit Stage(const std::function<void(fakes::FakeMachine&)>& furnish);
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    /// Launches the app. Nothing has been read of the machine until time passes.
    void launch();
    /// Simulated seconds, which the windows follow.
    void pass(double seconds);
    /// Real milliseconds, in which events are handled, pictures drawn and animations run out.
    void draw(int milliseconds = 700);
    /// As a click on the status item.
    void toggle() { m_controller->toggle(); }
    void openMain() { m_controller->openMain(); }
    /// A key, to the window that was opened last.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    /// Turns the wheel until the window's middle shows its end.
    void scrollDown();
    /// The window that was opened last and is to be seen; null if there is none.
    static QQuickWindow* window();

    fakes::FakeComputer& computer() { return m_computer; }
    fakes::FakeMachine& machine() { return m_computer.machine; }

private:
    fakes::TemporaryFolder m_folder;
    fakes::FakeComputer m_computer;
    std::unique_ptr<Log> m_log;
    std::unique_ptr<app::StatusBarController> m_controller;
};

/// What the app does before its windows: software drawing, and no end with the last window.
void prepareApplication();

}  // namespace ravik::stage
