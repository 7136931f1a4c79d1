#include "Platform/Linux/OsRelease.h"

namespace ravik::platform {

namespace {

std::string value(std::string_view text, std::string_view key) {
    while (!text.empty()) {
        const std::size_t feed = text.find('\n');
        std::string_view line = text.substr(0, feed);
        if (line.starts_with(key) && line.substr(key.size()).starts_with('=')) {
            line.remove_prefix(key.size() + 1);
            const bool quoted = line.size() >= 2 && (line.front() == '"' || line.front() == '\'') &&
                                line.back() == line.front();
            return std::string(quoted ? line.substr(1, line.size() - 2) : line);
        }
        if (feed == text.npos) break;
        text.remove_prefix(feed + 1);
    }
    return {};
}

}  // namespace

std::string osReleaseName(std::string_view osRelease) {
    const std::string id = value(osRelease, "ID");
    const std::string version = value(osRelease, "VERSION_ID");
    return id.empty() || version.empty() ? id + version : id + " " + version;
}

}  // namespace ravik::platform
