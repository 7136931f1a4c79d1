#include "Core/Base/Utf8.h"

#include <algorithm>

#include "Core/Base/SmallLetters.h"

namespace ravik::Utf8 {

namespace {

constexpr char32_t dottedI = 0x130;

char32_t lower(char32_t scalar) {
    if (scalar < 0x80) return scalar >= 'A' && scalar <= 'Z' ? scalar + 32 : scalar;
    const auto all = capitals();
    const auto run = std::ranges::lower_bound(all, scalar, {}, &Capitals::last);
    if (run == all.end() || scalar < run->first || (scalar - run->first) % run->step != 0) return scalar;
    return scalar + run->distance;
}

char32_t upper(char32_t scalar) {
    if (scalar < 0x80) return scalar >= 'a' && scalar <= 'z' ? scalar - 32 : scalar;
    if (scalar == 0x3C2) return 0x3A3;  // a sigma at the end of a word
    for (const Capitals& run : capitals()) {
        const char32_t capital = scalar - run.distance;
        if (run.first <= capital && capital <= run.last && lower(capital) == scalar) return capital;
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
        if (scalar == dottedI) {
            small += "i\u0307";  // the one capital that becomes two scalars
        } else if (lowered == scalar) {
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
