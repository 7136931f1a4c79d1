#include "Tests/EndToEnd/Desktop/Session.h"

#include <cstdlib>
#include <string_view>

namespace ravik::endtoend {

namespace {

constexpr const char* screen = "1800x1500x24";

/// A panel of the desktop's with nothing on it but the status area, no longer than that.
constexpr const char* xfcePanel = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=100;y=20"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="1"/>
      <property name="length-adjust" type="bool" value="true"/>
      <property name="size" type="uint" value="32"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
      <property name="known-items" type="array"><value type="string" value="Ravik"/></property>
    </property>
  </property>
</channel>
)";

/// The environment from here on is `entries`, and what a sanitizer was told.
void takeEnvironment(const std::vector<std::string>& entries) {
    std::vector<std::string> kept = entries;
    for (char** entry = environ; *entry; ++entry) {
        const std::string_view text = *entry;
        if (text.substr(0, text.find('=')).ends_with("SAN_OPTIONS")) kept.emplace_back(text);
    }
    clearenv();
    for (const std::string& entry : kept) {
        const std::size_t at = entry.find('=');
        setenv(entry.substr(0, at).c_str(), entry.c_str() + at + 1, 1);
    }
}

platform::OwnBus startBus(const platform::OwnXServer& server, Home& home) {
    home.add(server.variable());
    home.add("XDG_DATA_DIRS=/usr/share");
    home.add("XDG_CONFIG_DIRS=" + (home.path() / "no").native());
    home.add("NO_AT_BRIDGE=0");
    // The services that the bus starts get this environment.
    takeEnvironment(home.environment());
    return platform::OwnBus({"org.a11y.Bus", "org.xfce.Xfconf"});
}

}  // namespace

Session::Session(Home& home) : m_server(screen), m_manager(m_server), m_daemon(startBus(m_server, home)) {
    m_bus = std::make_unique<Bus>(m_daemon.address());
    home.add(m_daemon.variable());
    takeEnvironment(home.environment());
}

Pid startTray(Tray tray, const Home& home) {
    if (tray == Tray::trayer) {
        return platform::startProgram(
            {"trayer", "--edge", "top", "--align", "left", "--widthtype", "request", "--height", "32"});
    }
    if (tray == Tray::xfce) {
        home.write("config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", xfcePanel);
        return platform::startProgram({"xfce4-panel", "--disable-wm-check"});
    }
    return 0;
}

std::optional<Area> iconIn(Tray tray, Hands& hands) {
    constexpr int smallest = 22;
    // Xfce's panel draws the icon itself, and grows to hold it; an embedded one is a window of the app's.
    for (const Area& one : tray == Tray::xfce ? hands.windowsOfClass("Xfce4-panel") : hands.windows("Ravik")) {
        if (one.width >= smallest && one.width <= largestIcon) return one;
    }
    return {};
}

}  // namespace ravik::endtoend
