#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <map>
#include <tuple>

#include "Core/Diagnosis/Rx.h"
#include "Core/Disk/DiskScanner.h"
#include "Core/Disk/VersionedName.h"

namespace ravik::DiskScanner {

std::optional<VersionedName> VersionedName::parse(std::string_view name) {
    static const Regex versionAtEnd("-[0-9a-f]+$", "-");
    if (name.starts_with('.')) return {};
    const auto match = versionAtEnd.find(name);
    if (!match) return {};
    const auto at = static_cast<std::size_t>(match->data() - name.data());
    const std::string_view piece = name.substr(at + 1);
    std::int64_t version = -1;
    const auto [end, error] = std::from_chars(piece.data(), piece.data() + piece.size(), version);
    if (error != std::errc{} || end != piece.data() + piece.size()) version = -1;
    return VersionedName{std::string(name.substr(0, at)).append(piece.substr(match->size() - 1)), version};
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
