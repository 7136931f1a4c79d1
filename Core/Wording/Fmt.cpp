#include "Core/Wording/Fmt.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace ravik::Fmt {

namespace {

std::string grouped(std::uint64_t number) {
    std::string digits = fmt::format("{}", number);
    for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, ",");
    return digits;
}

std::size_t scalarLength(unsigned char lead) {
    if (lead < 0xC0) return 1;
    if (lead < 0xE0) return 2;
    return lead < 0xF0 ? 3 : 4;
}

}  // namespace

std::string plural(std::uint64_t count, std::string_view word, std::string_view plural) {
    if (count == 1) return fmt::format("1 {}", word);
    if (!plural.empty()) return fmt::format("{} {}", count, plural);
    return fmt::format("{} {}{}", count, word, word.ends_with('s') ? "es" : "s");
}

std::string mb(std::uint64_t bytes) { return grouped(wholeMB(bytes)) + "\u00a0MB"; }

std::array<std::string, 2> amount(std::uint64_t bytes) {
    if ((bytes >> 23) > 124) return {gbByThousands(bytes), "GB"};
    return {fmt::format("{}", wholeMB(bytes)), "MB"};
}

std::string amountText(std::uint64_t bytes) {
    const auto [number, unit] = amount(bytes);
    return number + " " + unit;
}

std::string ram(std::uint64_t bytes) {
    return fmt::format("{:.0f} GB", std::round(static_cast<double>(bytes) * 0x1p-30));
}

std::string gbByThousands(std::uint64_t bytes) {
    return fmt::format("{:.1f}", static_cast<double>(wholeMB(bytes)) / 1000.0);
}

std::string gib(double bytes) { return fmt::format("{:.1f}", bytes * 0x1p-30); }

std::string_view firstScalars(std::string_view text, std::size_t count) {
    std::size_t at = 0;
    for (; count > 0 && at < text.size(); --count) {
        const std::size_t end = std::min(at + scalarLength(static_cast<unsigned char>(text[at])), text.size());
        for (++at; at < end && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;) ++at;
    }
    return text.substr(0, at);
}

}  // namespace ravik::Fmt
