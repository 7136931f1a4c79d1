#include "Core/Base/Utf8.h"

namespace ravik::Utf8 {

namespace {

bool within(char32_t scalar, char32_t first, char32_t last) { return first <= scalar && scalar <= last; }

/// Alphabets whose capitals and small letters alternate, the capital on an even or an odd number.
bool alternates(char32_t scalar, bool& capitalIsOdd) {
    capitalIsOdd = within(scalar, 0x139, 0x148) || within(scalar, 0x179, 0x17E) || within(scalar, 0x4C1, 0x4CE);
    return capitalIsOdd || within(scalar, 0x100, 0x12F) || within(scalar, 0x132, 0x137) ||
           within(scalar, 0x14A, 0x177) || within(scalar, 0x370, 0x373) || within(scalar, 0x460, 0x481) ||
           within(scalar, 0x48A, 0x4BF) || within(scalar, 0x4D0, 0x52F) || within(scalar, 0x1E00, 0x1E95) ||
           within(scalar, 0x1EA0, 0x1EFF);
}

char32_t lower(char32_t scalar) {
    if (scalar < 0x80) return within(scalar, 'A', 'Z') ? scalar + 32 : scalar;
    if (within(scalar, 0xC0, 0xDE)) return scalar == 0xD7 ? scalar : scalar + 32;
    if (scalar == 0x178) return 0xFF;
    if (within(scalar, 0x391, 0x3AB)) return scalar + 32;
    switch (scalar) {
        case 0x386: return 0x3AC;
        case 0x388:
        case 0x389:
        case 0x38A: return scalar + 37;
        case 0x38C: return 0x3CC;
        case 0x38E:
        case 0x38F: return scalar + 63;
        case 0x1E9E: return 0xDF;
        default: break;
    }
    if (within(scalar, 0x400, 0x40F)) return scalar + 80;
    if (within(scalar, 0x410, 0x42F)) return scalar + 32;
    if (within(scalar, 0x531, 0x556)) return scalar + 48;
    bool capitalIsOdd = false;
    if (alternates(scalar, capitalIsOdd) && (scalar % 2 == 1) == capitalIsOdd) return scalar + 1;
    return scalar;
}

char32_t upper(char32_t scalar) {
    if (scalar == 0xFF) return 0x178;
    if (scalar == 0x3C2) return 0x3A3;  // a sigma at the end of a word
    // How far small letters lie behind their capitals.
    for (const char32_t distance : {32, 80, 48, 1, 38, 37, 64, 63}) {
        if (scalar > distance && lower(scalar - distance) == scalar) return scalar - distance;
    }
    return scalar;
}

void append(std::string& text, char32_t scalar) {
    const auto byte = [&](char32_t value) { text += static_cast<char>(value); };
    if (scalar < 0x80) return byte(scalar);
    if (scalar < 0x800) {
        byte(0xC0 | scalar >> 6);
    } else if (scalar < 0x10000) {
        byte(0xE0 | scalar >> 12);
        byte(0x80 | (scalar >> 6 & 0x3F));
    } else {
        byte(0xF0 | scalar >> 18);
        byte(0x80 | (scalar >> 12 & 0x3F));
        byte(0x80 | (scalar >> 6 & 0x3F));
    }
    byte(0x80 | (scalar & 0x3F));
}

}  // namespace

char32_t next(std::string_view text, std::size_t& at) {
    const auto lead = static_cast<unsigned char>(text[at++]);
    const int more = lead < 0xC2 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF5 ? 3 : 0;
    if (more == 0 || text.size() - at < static_cast<std::size_t>(more)) return lead;
    char32_t scalar = lead & (0x3F >> more);
    for (int count = 0; count < more; ++count) {
        const auto trail = static_cast<unsigned char>(text[at + count]);
        if ((trail & 0xC0) != 0x80) return lead;
        scalar = scalar << 6 | (trail & 0x3F);
    }
    at += more;
    return scalar;
}

std::string lower(std::string_view text) {
    std::string small;
    small.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = at;
        const char32_t scalar = next(text, at);
        const char32_t lowered = at - begin == 1 && scalar >= 0x80 ? scalar : lower(scalar);
        if (lowered == scalar) {
            small.append(text, begin, at - begin);
        } else {
            append(small, lowered);
        }
    }
    return small;
}

std::string capitalised(std::string_view text) {
    if (text.empty()) return {};
    std::size_t behind = 0;
    const char32_t first = next(text, behind);
    std::string result;
    if (behind == 1 && first >= 0x80) {
        result += text.front();
    } else {
        append(result, upper(first));
    }
    result += text.substr(behind);
    return result;
}

}  // namespace ravik::Utf8
