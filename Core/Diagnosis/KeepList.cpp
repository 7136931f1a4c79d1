#include "Core/Diagnosis/KeepList.h"

#include <algorithm>
#include <set>

#include <nlohmann/json.hpp>

#include "Platform/Platform.h"

namespace ravik {

namespace {

std::set<std::string> read(Defaults& defaults) {
    const auto stored = defaults.get(KeepList::key);
    std::set<std::string> commands;
    if (!stored || !stored->is_array()) return commands;
    const auto isText = [](const nlohmann::json& entry) { return entry.is_string(); };
    if (!std::ranges::all_of(*stored, isText)) return commands;
    for (const nlohmann::json& entry : *stored) commands.insert(entry.get<std::string>());
    return commands;
}

}  // namespace

KeepSet KeepList::commands() const {
    const std::set<std::string> commands = read(m_defaults);
    return {commands.begin(), commands.end()};
}

std::vector<std::string> KeepList::sorted() const {
    const std::set<std::string> commands = read(m_defaults);
    return {commands.begin(), commands.end()};
}

bool KeepList::add(const std::string& command) {
    std::set<std::string> commands = read(m_defaults);
    commands.insert(command);
    return m_defaults.set(key, commands);
}

bool KeepList::remove(const std::string& command) {
    std::set<std::string> commands = read(m_defaults);
    commands.erase(command);
    return m_defaults.set(key, commands);
}

}  // namespace ravik
