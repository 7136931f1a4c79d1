#include "Tests/Fakes/FakeDesktop.h"

#include <algorithm>
#include <fstream>
#include <iterator>

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
    if (isReadOnly) return false;
    values.insert_or_assign(std::string(key), value);
    ++writes;
    return true;
}

bool FakeDefaults::remove(std::string_view key) {
    if (const auto hit = values.find(key); hit != values.end()) values.erase(hit);
    ++writes;
    return true;
}

std::optional<std::string> FakeArchive::zip(const std::filesystem::path& from, const std::filesystem::path& to,
                                            const std::function<bool()>& cancelled) {
    namespace fs = std::filesystem;
    folder = from;
    file = to;
    permissions = fs::status(from).permissions();
    if (refusal) return refusal;
    if (cancelled && cancelled()) return "It was interrupted.";
    for (const auto& entry : fs::recursive_directory_iterator(from)) {
        const std::string name = fs::relative(entry.path(), from.parent_path()).string();
        if (entry.is_directory()) {
            packed[name + "/"];
        } else {
            std::ifstream bytes(entry.path(), std::ios::binary);
            packed[name] = {std::istreambuf_iterator<char>(bytes), {}};
        }
    }
    return {};
}

}  // namespace ravik::fakes
