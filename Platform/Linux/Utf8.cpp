#include "Platform/Linux/Utf8.h"

#include <algorithm>
#include <cstdint>

namespace ravik::platform {

namespace {

struct Step {
    std::size_t length;
    bool isValid;
};

// One scalar, or the part that one replacement stands for.
Step step(std::string_view bytes) {
    const auto at = [&](std::size_t index) { return static_cast<std::uint8_t>(bytes[index]); };
    const std::uint8_t lead = at(0);
    if (lead < 0x80) return {1, true};
    if (lead < 0xC2 || lead > 0xF4) return {1, false};

    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    // The second byte alone tells overlong forms, surrogates and what lies beyond U+10FFFF.
    std::uint8_t low = 0x80;
    std::uint8_t high = 0xBF;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
    for (std::size_t index = 1; index < length; ++index) {
        if (index >= bytes.size() || at(index) < low || at(index) > high) return {index, false};
        low = 0x80;
        high = 0xBF;
    }
    return {length, true};
}

}  // namespace

std::string repairedUtf8(std::string_view bytes) {
    const bool isAscii = std::ranges::none_of(bytes, [](char byte) { return static_cast<std::uint8_t>(byte) >= 0x80; });
    if (isAscii) return std::string(bytes);

    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const auto [length, isValid] = step(bytes);
        text += isValid ? bytes.substr(0, length) : std::string_view("\xEF\xBF\xBD");
        bytes.remove_prefix(length);
    }
    return text;
}

}  // namespace ravik::platform
