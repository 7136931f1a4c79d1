#include "Core/Autopilot/Approvals.h"

#include <nlohmann/json.hpp>

#include "Platform/Platform.h"

namespace ravik {

std::set<Decision::Action> Approvals::actions() const {
    std::set<Decision::Action> approved;
    const auto stored = m_defaults.get(key);
    if (!stored || !stored->is_array()) return approved;
    for (const nlohmann::json& entry : *stored) {
        if (!entry.is_string()) continue;
        if (const auto action = parseAction(entry.get<std::string>())) approved.insert(*action);
    }
    return approved;
}

bool Approvals::setActions(const std::set<Decision::Action>& actions) {
    std::set<std::string> words;
    for (const Decision::Action action : actions) words.emplace(word(action));
    return m_defaults.set(key, words);
}

std::map<std::string, Time> Suggestions::dismissed() const {
    std::map<std::string, Time> times;
    const auto stored = m_defaults.get(key);
    if (!stored || !stored->is_object()) return times;
    for (const auto& [target, at] : stored->items()) {
        if (at.is_number()) times[target] = at.get<double>();
    }
    return times;
}

bool Suggestions::isDismissed(const std::string& target, Time now) const {
    const auto times = dismissed();
    const auto at = times.find(target);
    return at != times.end() && now - at->second < dismissalSeconds;
}

bool Suggestions::dismiss(const std::string& target, Time now) {
    auto times = dismissed();
    times[target] = now;
    return m_defaults.set(key, times);
}

}  // namespace ravik
