#include "Core/Record/QuickLine.h"

#include <bit>
#include <charconv>
#include <cstring>

namespace ravik {

namespace {

constexpr std::uint64_t each(std::uint8_t byte) { return 0x0101010101010101ull * byte; }
constexpr std::uint64_t high = each(0x80);

std::uint64_t eightBytes(const char* at) {
    std::uint64_t bytes;
    std::memcpy(&bytes, at, sizeof bytes);
    return bytes;
}

/// Which of eight bytes a mask of high bits names first. The masks below are exact up to that byte.
int firstOf(std::uint64_t mask) { return std::countr_zero(mask) >> 3; }

/// The closing quote of a plain string that begins at `at`; null where it is not plain.
const char* plainEnd(const char* at) {
    for (;; at += 8) {
        const std::uint64_t bytes = eightBytes(at);
        const std::uint64_t quote = bytes ^ each('"');
        const std::uint64_t escape = bytes ^ each('\\');
        const std::uint64_t stops =
            ((quote - each(1)) & ~quote) | ((escape - each(1)) & ~escape) | ((bytes - each(0x20)) & ~bytes) | bytes;
        if ((stops & high) == 0) continue;
        at += firstOf(stops & high);
        return *at == '"' ? at : nullptr;
    }
}

const char* digitsEnd(const char* at) {
    for (;; at += 8) {
        const std::uint64_t digits = eightBytes(at) ^ each('0');
        const std::uint64_t others = ((digits + each(0x76)) | digits) & high;
        if (others != 0) return at + firstOf(others);
    }
}

struct Number {
    const char* end = nullptr;
    bool isWhole = true;
};

/// The end of a number that begins at `at`; null where it is none, or one that is not sure to fit.
Number numberAt(const char* at) {
    Number number;
    if (*at == '-') ++at;
    const char* end = digitsEnd(at);
    if (end == at || end - at > 17 || (*at == '0' && end - at > 1)) return number;
    if (*end == '.') {
        number.isWhole = false;
        const char* const fraction = end + 1;
        end = digitsEnd(fraction);
        if (end == fraction || end - fraction > 40) return number;
    }
    if (*end == 'e' || *end == 'E') {
        number.isWhole = false;
        ++end;
        if (*end == '-' || *end == '+') ++end;
        const char* const exponent = end;
        end = digitsEnd(exponent);
        if (end == exponent || end - exponent > 2) return number;
    }
    number.end = end;
    return number;
}

/// Each reads the value at `at` into `into` and returns its end; null where it is no plain one of that type.
const char* plain(const char* at, std::string_view& into) {
    if (*at != '"') return nullptr;
    const char* const end = plainEnd(at + 1);
    if (!end) return nullptr;
    into = {at + 1, static_cast<std::size_t>(end - at - 1)};
    return end + 1;
}

const char* plain(const char* at, std::int64_t& into) {
    const Number number = numberAt(at);
    if (!number.end || !number.isWhole) return nullptr;
    return std::from_chars(at, number.end, into).ec == std::errc() ? number.end : nullptr;
}

const char* plain(const char* at, double& into) {
    const Number number = numberAt(at);
#ifdef __cpp_lib_to_chars
    if (number.end && std::from_chars(at, number.end, into).ec == std::errc()) return number.end;
#else
    std::int64_t whole = 0;
    if (number.end && number.isWhole && plain(at, whole)) {
        into = static_cast<double>(whole);
        return number.end;
    }
#endif
    return nullptr;
}

/// The end of an array of what `element` takes; null where that gives up.
template <typename Element>
const char* arrayEnd(const char* at, Element element) {
    if (*at != '[') return nullptr;
    if (*++at == ']') return at + 1;
    for (;; ++at) {
        at = element(at);
        if (!at) return nullptr;
        if (*at == ']') return at + 1;
        if (*at != ',') return nullptr;
    }
}

/// The end of a value that nobody reads: a number, a text, or an array of texts.
const char* skip(const char* at) {
    std::string_view ignored;
    if (*at == '"') return plain(at, ignored);
    if (*at == '[') return arrayEnd(at, [&](const char* one) { return plain(one, ignored); });
    return numberAt(at).end;
}

}  // namespace

bool QuickLine::read(std::string_view line, Kind kind) {
    if constexpr (std::endian::native != std::endian::little) return false;
    t = m_kind = {};
    swapGB = load = 0;
    memFreePct = 100;
    reclaimableMB = 0;
    top.clear();
    findings.clear();
    const char* at = line.data();
    const char* const end = at + line.size();
    if (*at != '{') return false;
    for (std::size_t index = 0; at < end; ++index) {
        const Key* const found = key(at, index, kind);
        if (!found) return false;
        at = value(at, found->field);
        if (!at) return false;
        if (*at == '}') return at + 1 == end && m_kind == (kind == Kind::tick ? "tick" : "diagnosis");
    }
    return false;
}

bool QuickLine::Key::standsAt(const char* at) const {
    return (((eightBytes(at) ^ words[0]) & masks[0]) | ((eightBytes(at + 8) ^ words[1]) & masks[1]) |
            ((eightBytes(at + 16) ^ words[2]) & masks[2])) == 0;
}

const QuickLine::Key* QuickLine::key(const char*& at, std::size_t index, Kind kind) {
    auto& keys = m_keys[static_cast<std::size_t>(kind)];
    if (index < keys.size() && keys[index].standsAt(at)) {
        at += keys[index].size;
        return &keys[index];
    }
    constexpr std::size_t mostKeys = 32;
    if (index >= mostKeys || *at != (index == 0 ? '{' : ',') || at[1] != '"') return nullptr;
    const char* const close = plainEnd(at + 2);
    Key fresh;
    if (!close || close[1] != ':' || static_cast<std::size_t>(close + 2 - at) > sizeof fresh.words) return nullptr;
    fresh.size = static_cast<std::uint8_t>(close + 2 - at);
    std::memcpy(fresh.words.data(), at, fresh.size);
    std::memset(fresh.masks.data(), 0xFF, fresh.size);
    constexpr std::array<std::pair<std::string_view, Field>, 8> fields{{{"t", Field::t},
                                                                        {"kind", Field::kind},
                                                                        {"swapGB", Field::swapGB},
                                                                        {"load", Field::load},
                                                                        {"memFreePct", Field::memFreePct},
                                                                        {"reclaimableMB", Field::reclaimableMB},
                                                                        {"top", Field::top},
                                                                        {"findings", Field::findings}}};
    for (const auto& [name, field] : fields) {
        if (std::string_view(at + 2, close) == name) fresh.field = field;
    }
    at += fresh.size;
    if (index >= keys.size()) keys.resize(index + 1);
    keys[index] = fresh;
    return &keys[index];
}

const char* QuickLine::value(const char* at, Field field) {
    switch (field) {
        case Field::t: return plain(at, t);
        case Field::kind: return plain(at, m_kind);
        case Field::swapGB: return plain(at, swapGB);
        case Field::load: return plain(at, load);
        case Field::memFreePct: return plain(at, memFreePct);
        case Field::reclaimableMB: return plain(at, reclaimableMB);
        case Field::top: return readTop(at);
        case Field::findings: return readFindings(at);
        case Field::other: break;
    }
    return skip(at);
}

const char* QuickLine::readTop(const char* at) {
    top.clear();
    return arrayEnd(at, [this](const char* pair) -> const char* {
        auto& [name, mb] = top.emplace_back();
        if (*pair != '[') return nullptr;
        const char* const comma = plain(pair + 1, name);
        if (!comma || *comma != ',') return nullptr;
        const char* const close = plain(comma + 1, mb);
        return close && *close == ']' ? close + 1 : nullptr;
    });
}

const char* QuickLine::readFindings(const char* at) {
    findings.clear();
    return arrayEnd(at, [this](const char* id) { return plain(id, findings.emplace_back()); });
}

}  // namespace ravik
