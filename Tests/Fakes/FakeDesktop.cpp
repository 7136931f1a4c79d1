#include "Tests/Fakes/FakeDesktop.h"

#include <algorithm>

namespace ravik::fakes {

std::vector<RunningApp> FakeWorkspace::running() {
    std::vector<RunningApp> all;
    for (const App& app : apps) {
        if (!gone(app)) all.push_back(app.app);
    }
    return all;
}

bool FakeWorkspace::gone(const App& app) const {
    return app.askedAt >= 0 && app.quitsAfter >= 0 && m_clock.now() >= app.askedAt + app.quitsAfter;
}

bool FakeWorkspace::terminate(const RunningApp& app) {
    for (App& candidate : apps) {
        if (candidate.app.pid == app.pid && candidate.askedAt < 0) candidate.askedAt = m_clock.now();
    }
    return true;
}

bool FakeWorkspace::isTerminated(const RunningApp& app) {
    return std::ranges::none_of(apps, [&](const App& one) { return one.app.pid == app.pid && !gone(one); });
}

void FakeWorkspace::focus(const std::string& group) {
    front = group;
    if (m_observer) m_observer(group);
}

std::optional<nlohmann::json> FakeDefaults::get(std::string_view key) {
    const auto hit = values.find(key);
    if (hit == values.end()) return {};
    return hit->second;
}

bool FakeDefaults::set(std::string_view key, const nlohmann::json& value) {
    values.insert_or_assign(std::string(key), value);
    ++writes;
    return true;
}

bool FakeDefaults::remove(std::string_view key) {
    if (const auto hit = values.find(key); hit != values.end()) values.erase(hit);
    ++writes;
    return true;
}

}  // namespace ravik::fakes
