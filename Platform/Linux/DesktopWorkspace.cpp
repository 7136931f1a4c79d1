#include "Platform/Linux/DesktopWorkspace.h"

#include <algorithm>
#include <cstdlib>

#include "Platform/Linux/BootTime.h"
#include "Platform/Linux/IconPath.h"
#include "Platform/Linux/ReadFile.h"
#include "Platform/Linux/StoppedFamily.h"

namespace ravik::platform {

DesktopWorkspace::DesktopWorkspace(WorkspaceOptions options, std::unique_ptr<Windows> windows,
                                   std::unique_ptr<SessionBus> bus)
    : m_options(std::move(options)), m_windows(std::move(windows)), m_bus(std::move(bus)) {}

std::optional<std::uint64_t> DesktopWorkspace::startTicks(Pid pid) const {
    const auto text = readFile((m_options.procRoot / std::to_string(pid) / "stat").native());
    const auto stamp = text ? parseStartStamp(*text) : std::nullopt;
    if (!stamp || stamp->hasEnded()) return {};
    return stamp->ticks;
}

std::vector<RunningApp> DesktopWorkspace::running() {
    Pids owners;
    if (m_windows) {
        for (const Windows::Window& window : m_windows->list()) owners.push_back(window.pid);
    }
    if (m_bus) {
        for (const Pid pid : m_bus->applications()) owners.push_back(pid);
    }
    m_listed.clear();
    std::vector<RunningApp> apps;
    for (const Pid pid : owners) {
        if (m_listed.contains(pid)) continue;
        const auto start = startTicks(pid);
        const auto group = start && m_options.groupOf ? m_options.groupOf(pid) : std::nullopt;
        if (!group || group->empty()) continue;
        m_listed.emplace(pid, *start);
        apps.push_back({*group, *group, pid});
    }
    return apps;
}

std::optional<std::string> DesktopWorkspace::frontmost() {
    const auto pid = m_windows ? m_windows->active() : std::nullopt;
    return pid && m_options.groupOf ? m_options.groupOf(*pid) : std::nullopt;
}

bool DesktopWorkspace::knowsFocus() { return m_windows && m_windows->knowsFocus(); }

void DesktopWorkspace::onActivation(std::function<void(const std::string&)> observer) {
    if (!m_windows) return;
    m_windows->onActive([this, observer = std::move(observer)](Pid pid) {
        const auto group = m_options.groupOf ? m_options.groupOf(pid) : std::nullopt;
        if (group && observer) observer(*group);
    });
}

void DesktopWorkspace::resume(Pid pid) const {
    if (!m_options.signals) return;
    for (const Proc& proc : stoppedFamily(m_options.procRoot, pid)) {
        if (const auto verified = m_options.signals->verify(proc)) m_options.signals->send(*verified, Signal::resume);
    }
}

bool DesktopWorkspace::terminate(const RunningApp& app) {
    const auto start = startTicks(app.pid);
    const auto listed = m_listed.find(app.pid);
    if (!start || (listed != m_listed.end() && listed->second != *start)) return false;
    m_asked[app.pid] = *start;

    resume(app.pid);
    bool asked = false;
    if (m_windows) {
        for (const Windows::Window& window : m_windows->list()) {
            if (window.pid == app.pid && window.takesClose) asked |= m_windows->close(window);
        }
    }
    return asked || (m_bus && m_bus->quit(app.pid));
}

bool DesktopWorkspace::isTerminated(const RunningApp& app) {
    const auto start = startTicks(app.pid);
    if (!start) return true;
    if (const auto at = m_asked.find(app.pid); at != m_asked.end()) return at->second != *start;
    const auto at = m_listed.find(app.pid);
    return at != m_listed.end() && at->second != *start;
}

std::optional<std::string> DesktopWorkspace::iconPath(const std::string& group) {
    const auto [known, isNew] = m_icons.emplace(group, std::nullopt);
    if (isNew) known->second = platform::iconPath(group);
    return known->second;
}

SessionAddresses SessionAddresses::fromEnvironment() {
    const auto value = [](const char* name) {
        const char* found = std::getenv(name);
        return std::string(found ? found : "");
    };
    return {value("DISPLAY"), value("WAYLAND_DISPLAY"), value("SWAYSOCK"), sessionBusAddress()};
}

std::unique_ptr<Workspace> makeWorkspace(WorkspaceOptions options, const SessionAddresses& session) {
    std::unique_ptr<Windows> windows;
    if (!session.swaySocket.empty()) windows = makeSwayWindows(session.swaySocket);
    if (!windows && !session.display.empty()) {
        windows = makeX11Windows(session.display, session.waylandDisplay.empty());
    }
    return std::make_unique<DesktopWorkspace>(std::move(options), std::move(windows),
                                              std::make_unique<SessionBus>(session.bus));
}

}  // namespace ravik::platform
