#include "Platform/Linux/ApplicationUnit.h"

#include <algorithm>
#include <charconv>

namespace ravik::platform {

namespace {

constexpr std::size_t uuidLength = 36;

bool isUuid(std::string_view text) {
    if (text.size() != uuidLength) return false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isDash = at == 8 || at == 13 || at == 18 || at == 23;
        const char c = text[at];
        const bool isHex = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
        if (isDash ? c != '-' : !isHex) return false;
    }
    return true;
}

// Takes "snap.PKG.APP" and what older and newer versions put behind it.
std::vector<std::string> snapIds(std::string_view name) {
    if (name.size() > uuidLength + 1 && isUuid(name.substr(name.size() - uuidLength))) {
        name.remove_suffix(uuidLength + 1);
    }
    const std::size_t dot = name.find('.');
    if (dot == std::string_view::npos) return {};
    const std::string_view package = name.substr(0, dot);
    const std::string_view app = name.substr(dot + 1);
    if (package.empty() || app.empty() || app.starts_with("hook.")) return {};
    return {std::string(package) + "_" + std::string(app)};
}

std::vector<std::string_view> split(std::string_view text) {
    std::vector<std::string_view> parts;
    for (std::size_t end = text.find('-'); end != std::string_view::npos; end = text.find('-')) {
        parts.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    parts.push_back(text);
    return parts;
}

// The last part is the id; launchers that do not escape it leave its dashes in front.
std::vector<std::string> idsEndingWith(const std::vector<std::string_view>& parts) {
    std::vector<std::string> ids;
    std::string id;
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
        id.insert(0, id.empty() ? unescapeUnit(*part) : unescapeUnit(*part).append("-"));
        if (!id.empty()) ids.push_back(id);
    }
    return ids;
}

}  // namespace

std::string unescapeUnit(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        unsigned byte = 0;
        if (text.size() >= 4 && text.starts_with("\\x") &&
            std::from_chars(text.data() + 2, text.data() + 4, byte, 16).ptr == text.data() + 4) {
            plain += static_cast<char>(byte);
            text.remove_prefix(4);
        } else {
            plain += text.front();
            text.remove_prefix(1);
        }
    }
    return plain;
}

std::vector<std::string> applicationIds(std::string_view unit) {
    constexpr std::string_view scope = ".scope";
    constexpr std::string_view service = ".service";
    constexpr std::string_view app = "app-";
    constexpr std::string_view snap = "snap.";
    if (unit.starts_with(snap) && unit.ends_with(scope)) {
        unit.remove_prefix(snap.size());
        unit.remove_suffix(scope.size());
        return snapIds(unit);
    }
    if (!unit.starts_with(app)) return {};
    unit.remove_prefix(app.size());
    if (unit.ends_with(scope)) {
        unit.remove_suffix(scope.size());
        auto parts = split(unit);
        if (parts.size() < 2) return {};
        parts.pop_back();
        return idsEndingWith(parts);
    }
    if (unit.ends_with(service)) {
        unit.remove_suffix(service.size());
        return idsEndingWith(split(unit.substr(0, unit.find('@'))));
    }
    return {};
}

}  // namespace ravik::platform
