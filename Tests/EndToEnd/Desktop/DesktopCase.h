#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Tests/EndToEnd/Desktop/Accessible.h"
#include "Tests/EndToEnd/Desktop/Hands.h"
#include "Tests/EndToEnd/Desktop/Session.h"

namespace ravik::endtoend {

/// A test of the built desktop app, as a person at the screen has it. Everything runs in a pid namespace of the
/// test's own, so that the app finds and ends nothing but what the test has started.
class DesktopCase : public EndToEnd {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts a tray, and waits until its window stands.
    void showTray(Tray wanted);
    /// Starts the app, with what is to be added to its environment.
    void startApp(const std::vector<std::string>& variables = {});
    /// Where its icon stands in the tray, once it does.
    Area icon();

    /// The windows that the app shows, as they are heard.
    Accessible shown() const { return accessibility->windowsOf(app->pid()); }
    /// True once what it shows fulfils that; otherwise what it shows is told.
    bool shows(const std::function<bool(const Accessible&)>& wanted, double seconds = 20);
    bool shows(const std::string& role, const std::string& name, double seconds = 20);
    bool showsBeginning(const std::string& role, const std::string& beginning, double seconds = 20);
    /// Where the app's windows stand; its icon in a tray is none.
    std::vector<Area> windows();
    bool showsNoWindow(double seconds = 10);
    /// True once the keys go to the window with that title.
    bool hasKeyboard(const std::string& title);
    /// Clicks the middle of the first of that role and name, once it stands.
    void click(const std::string& role, const std::string& name);

    /// A program that a terminal started and left behind when it closed, in so many megabytes: its pid.
    Pid leave(const std::string& script, int megabytes, std::vector<std::string> variables = {});
    /// True once the log has a line of that kind.
    bool logs(std::string_view kind, double seconds = 20) const;

    std::unique_ptr<Session> session;
    std::unique_ptr<Hands> hands;
    std::unique_ptr<AccessibilityBus> accessibility;
    std::unique_ptr<Running> app;
    Tray tray = Tray::none;
    Pid trayPid = 0;
};

}  // namespace ravik::endtoend
