#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "Core/Base/Pids.h"
#include "Core/Base/Subscription.h"
#include "Core/Screens/Destination.h"

namespace ravik {

class Log;

/// What a help sheet shows.
struct FindingInfo {
    /// Finding::id
    std::string finding;
    friend bool operator==(const FindingInfo&, const FindingInfo&) = default;
};
struct SessionInfo {
    /// AgentSession::id
    Pid session = 0;
    friend bool operator==(const SessionInfo&, const SessionInfo&) = default;
};
struct PageInfo {
    Destination page = Destination::diagnosis;
    friend bool operator==(const PageInfo&, const PageInfo&) = default;
};
using Info = std::variant<FindingInfo, SessionInfo, PageInfo>;

/// "f:orphan:812", "s:812", "p:history"
std::string idOf(const Info& info);

/// Where the user is. Lives as long as the program. Main loop.
class Nav {
public:
    enum class Change { destination, info, expanded, windowShown };

    /// `screens`: those that exist. The first of them is on view at the start.
    Nav(Log& log, std::vector<Destination> screens);
    Nav(const Nav&) = delete;
    Nav& operator=(const Nav&) = delete;

    /// In the order of the sidebar.
    const std::vector<Destination>& screens() const { return m_screens; }
    /// The screen on view; outlasts the window.
    Destination destination() const { return m_destination; }
    /// Writes a "tab" line where it is another; false where there is no such screen.
    bool go(Destination destination);

    /// The help sheet over the window.
    const std::optional<Info>& info() const { return m_info; }
    void setInfo(std::optional<Info> info);

    /// Ids of unfolded rows, kept across screens.
    const std::set<std::string>& expanded() const { return m_expanded; }
    bool isExpanded(const std::string& id) const { return m_expanded.contains(id); }
    void setExpanded(const std::string& id, bool on);

    /// The main window is open and not fully covered.
    bool windowShown() const { return m_windowShown; }
    void setWindowShown(bool shown);
    /// The window has come on view: writes a "window" line.
    void windowAppeared();

    /// Calls back after each change, for as long as the subscription is held.
    Subscription observe(std::function<void(Change)> observer) { return m_observers.add(std::move(observer)); }

private:
    Log& m_log;
    std::vector<Destination> m_screens;
    Destination m_destination = Destination::diagnosis;
    std::optional<Info> m_info;
    std::set<std::string> m_expanded;
    bool m_windowShown = true;
    Observers<Change> m_observers;
};

}  // namespace ravik
