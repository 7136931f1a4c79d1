#include "Core/Disk/MountPoints.h"

#include <fstream>
#include <iterator>

namespace ravik {

namespace {

/// Blank, tab, line feed and backslash stand as a backslash and three octal digits.
std::string unescape(std::string_view text) {
    const auto isOctal = [](char c) { return c >= '0' && c <= '7'; };
    std::string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\' && at + 3 < text.size() && isOctal(text[at + 1]) && isOctal(text[at + 2]) &&
            isOctal(text[at + 3])) {
            out += static_cast<char>((text[at + 1] - '0') * 64 + (text[at + 2] - '0') * 8 + (text[at + 3] - '0'));
            at += 3;
        } else {
            out += text[at];
        }
    }
    return out;
}

}  // namespace

std::vector<std::string> parseMountPoints(std::string_view mountinfo) {
    constexpr int mountPointField = 4;
    std::vector<std::string> points;
    while (!mountinfo.empty()) {
        std::string_view line = mountinfo.substr(0, mountinfo.find('\n'));
        mountinfo.remove_prefix(std::min(line.size() + 1, mountinfo.size()));
        int field = 0;
        for (; field < mountPointField; ++field) {
            const auto blank = line.find(' ');
            if (blank == std::string_view::npos) break;
            line.remove_prefix(blank + 1);
        }
        if (field == mountPointField) points.push_back(unescape(line.substr(0, line.find(' '))));
    }
    return points;
}

std::vector<std::string> mountPointsBelow(const std::filesystem::path& folder) {
    std::ifstream file("/proc/self/mountinfo", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::string prefix = folder.string();
    if (!prefix.ends_with('/')) prefix += '/';
    std::vector<std::string> points = parseMountPoints(text);
    std::erase_if(
        points, [&](const std::string& point) { return !point.starts_with(prefix) || point.size() == prefix.size(); });
    return points;
}

}  // namespace ravik
