#include "Core/Wording/AppIcons.h"

#include <array>

#include "Core/Base/Utf8.h"

namespace ravik::AppIcons {

std::string_view symbol(std::string_view name, const Host& host) {
    const HostTables& tables = host.tables();
    name = name.substr(0, name.find(':'));
    const auto never = tables.neverNames.find(name);
    const bool neverAsDatabase = never != tables.neverNames.end() && never->second == "a database server";
    if (tables.databases.contains(name) || neverAsDatabase) return cylinder;
    return tables.interpreters.contains(name) ? code : terminal;
}

IconRef icon(std::string_view group, const Host& host) {
    if (!group.starts_with('[')) return {std::string(group), std::string(symbol(group, host))};
    const std::size_t end = group.find("] ");
    if (end != group.npos) group.remove_prefix(end + 2);
    return {std::string(group), std::string(gear)};
}

double tint(std::string_view pathOrSymbol) {
    static constexpr std::array opacities{0.13, 0.19, 0.25};
    std::size_t sum = 0;
    for (std::size_t at = 0; at < pathOrSymbol.size();) sum += Utf8::next(pathOrSymbol, at);
    return opacities[sum % opacities.size()];
}

const std::optional<std::string>& Cache::path(const IconRef& icon) {
    static const std::optional<std::string> none;
    if (icon.app.empty()) return none;
    const auto [entry, fresh] = m_paths.try_emplace(icon.app);
    if (fresh) entry->second = m_find(icon.app);
    return entry->second;
}

}  // namespace ravik::AppIcons
