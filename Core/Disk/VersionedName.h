#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ravik::DiskScanner {

/// A folder name with "-" and lower-case hexadecimal digits at its end: "chromium-1140". A line feed may follow them; it
/// belongs to the family.
struct VersionedName {
    std::string family;         // "chromium"
    std::int64_t version = -1;  // -1: the digits are no decimal number

    /// Absent for any other name, and for a hidden one.
    static std::optional<VersionedName> parse(std::string_view name);
};

}  // namespace ravik::DiskScanner
