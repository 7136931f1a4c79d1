#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <tuple>

#include "Core/Disk/DiskScanner.h"
#include "Core/Disk/VersionedName.h"

namespace ravik::DiskScanner {

std::optional<VersionedName> VersionedName::parse(std::string_view name) {
    const auto dash = name.rfind('-');
    if (dash == std::string_view::npos || dash + 1 == name.size() || name.starts_with('.')) return {};
    const std::string_view piece = name.substr(dash + 1);
    if (piece.find_first_not_of("0123456789abcdef") != std::string_view::npos) return {};
    std::int64_t version = -1;
    const auto [end, error] = std::from_chars(piece.data(), piece.data() + piece.size(), version);
    if (error != std::errc{} || end != piece.data() + piece.size()) version = -1;
    return VersionedName{std::string(name.substr(0, dash)), version};
}

std::vector<std::string> oldVersions(const std::vector<std::string>& names) {
    std::map<std::string, std::vector<std::pair<std::int64_t, std::string>>> families;
    for (const std::string& name : names) {
        if (const auto parsed = VersionedName::parse(name))
            families[parsed->family].emplace_back(parsed->version, name);
    }
    std::vector<std::string> old;
    for (auto& [family, versions] : families) {
        std::ranges::sort(versions);
        versions.pop_back();
        for (auto& [version, name] : versions) old.push_back(std::move(name));
    }
    std::ranges::sort(old);
    return old;
}

}  // namespace ravik::DiskScanner
