#include "Platform/Linux/MappedCode.h"

#include <algorithm>
#include <charconv>

namespace ravik::platform {

namespace {

/// "7f1c2a000000-7f1c2a021000"
bool parseRange(std::string_view text, AddressRange& range) {
    const char* end = text.data() + text.size();
    const auto [dash, bad] = std::from_chars(text.data(), end, range.start, 16);
    if (bad != std::errc() || dash == end || *dash != '-') return false;
    const auto [rest, alsoBad] = std::from_chars(dash + 1, end, range.end, 16);
    return alsoBad == std::errc() && rest == end && range.start < range.end;
}

}  // namespace

std::vector<AddressRange> mappedCode(std::string_view maps) {
    std::vector<AddressRange> found;
    while (!maps.empty()) {
        const std::string_view line = maps.substr(0, maps.find('\n'));
        maps.remove_prefix(std::min(maps.size(), line.size() + 1));
        const std::size_t blank = line.find(' ');
        if (blank == line.npos || line.substr(blank, 6) != " r-xp ") continue;
        // [vdso] and what has no name are not mapped from a file.
        if (line.find(" /") == line.npos) continue;
        // What QML compiles for itself is written into a file in memory, and what a driver maps is its own: neither would come back.
        if (line.find(" /memfd:") != line.npos || line.find(" /dev/") != line.npos || line.ends_with(" (deleted)")) {
            continue;
        }
        AddressRange range;
        if (parseRange(line.substr(0, blank), range)) found.push_back(range);
    }
    return found;
}

}  // namespace ravik::platform
