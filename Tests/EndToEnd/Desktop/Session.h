#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Tests/EndToEnd/Desktop/Bus.h"
#include "Tests/EndToEnd/Desktop/Hands.h"
#include "Tests/EndToEnd/Support.h"
#include "Tests/Platform/Support/Desktop.h"

namespace ravik::endtoend {

/// A desktop of a test's own: a screen, a window manager, a bus that starts the services a desktop has, and folders
/// that nobody else uses. While it stands, the test's own environment is that of its programs.
class Session {
public:
    /// Adds to `home` what leads its programs to the desktop.
    explicit Session(Home& home);

    bool started() const { return m_manager.started() && m_bus->connection(); }
    platform::OwnXServer& server() { return m_server; }
    const Bus& bus() const { return *m_bus; }
    /// Ends the bus under the programs.
    void stopBus() { m_daemon.stop(); }

private:
    platform::OwnXServer m_server;
    platform::OwnWindowManager m_manager;
    platform::OwnBus m_daemon;
    std::unique_ptr<Bus> m_bus;
};

/// What shows status items. Each shows nothing else.
enum class Tray { none, trayer, xfce };

/// Starts one in the upper left corner: its pid.
Pid startTray(Tray tray, const Home& home);

/// Windows of the app that are no wider are its icon in a tray.
inline constexpr int largestIcon = 64;
/// Where the app's icon stands; absent until it does.
std::optional<Area> iconIn(Tray tray, Hands& hands);

}  // namespace ravik::endtoend
