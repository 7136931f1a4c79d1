#include "Core/Screens/Nav.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Core/Record/Log.h"

namespace ravik {

std::string idOf(const Info& info) {
    if (const auto* finding = std::get_if<FindingInfo>(&info)) return "f:" + finding->finding;
    if (const auto* session = std::get_if<SessionInfo>(&info)) return fmt::format("s:{}", session->session);
    return fmt::format("p:{}", word(std::get<PageInfo>(info).page));
}

Nav::Nav(Log& log, std::vector<Destination> screens) : m_log(log), m_screens(std::move(screens)) {
    std::ranges::sort(m_screens, {}, key);
    if (!m_screens.empty()) m_destination = m_screens.front();
}

bool Nav::go(Destination destination) {
    if (std::ranges::find(m_screens, destination) == m_screens.end()) return false;
    if (m_destination == destination) return true;
    m_destination = destination;
    m_log.event("tab", {{"name", word(destination)}});
    m_observers.notify(Change::destination);
    return true;
}

void Nav::setInfo(std::optional<Info> info) {
    if (m_info == info) return;
    m_info = std::move(info);
    m_observers.notify(Change::info);
}

void Nav::setExpanded(const std::string& id, bool on) {
    const bool changed = on ? m_expanded.insert(id).second : m_expanded.erase(id) > 0;
    if (changed) m_observers.notify(Change::expanded);
}

void Nav::setWindowShown(bool shown) {
    if (std::exchange(m_windowShown, shown) != shown) m_observers.notify(Change::windowShown);
}

void Nav::windowAppeared() {
    m_log.event("window", {{"open", true}});
    setWindowShown(true);
}

}  // namespace ravik
