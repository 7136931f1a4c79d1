#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

/// The forms of numbers. The interface is in English, and so are its numbers, whatever the locale.
namespace ravik::Fmt {

/// "1 process", "2 processes": with an "s", with "es" behind an "s", or with the plural given.
std::string plural(std::uint64_t count, std::string_view word, std::string_view plural = {});
/// Mebibytes, cut, digits grouped, a no-break space: "1,234 MB".
std::string mb(std::uint64_t bytes);
/// Number and unit: {"999", "MB"}, and from 1000 MiB on thousands of MiB: {"1.0", "GB"}.
std::array<std::string, 2> amount(std::uint64_t bytes);
/// amount() joined by one blank.
std::string amountText(std::uint64_t bytes);
/// Whole gibibytes, rounded: "16 GB".
std::string ram(std::uint64_t bytes);

/// Thousands of MiB with one decimal, no unit: how an app's memory is written.
std::string gbByThousands(std::uint64_t bytes);
/// GiB with one decimal, no unit.
std::string gib(double bytes);

inline constexpr std::uint64_t wholeMB(std::uint64_t bytes) { return bytes >> 20; }

/// The first `count` Unicode scalars of UTF-8 text; a byte that belongs to none counts as one.
std::string_view firstScalars(std::string_view text, std::size_t count);

}  // namespace ravik::Fmt
