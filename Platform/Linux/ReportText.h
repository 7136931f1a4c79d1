#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Platform.h"

/// Reports of crashes and hangs as text: "key: value" lines, then, behind an empty line, what only a person reads.
namespace ravik::platform::ReportText {

inline constexpr std::string_view crashPrefix = "Ravik-crash-";
inline constexpr std::string_view hangPrefix = "Ravik-hang-";
/// Ends the name of a report until a run has taken it.
inline constexpr std::string_view freshSuffix = ".new";

/// What a report says; a key that is missing or has no such value counts as 0 or empty, as in one that a full disk cut
/// off. Text that is no UTF-8 is mended.
CrashDiagnostic crash(std::string_view text);
/// Absent without a length above 0.
std::optional<HangDiagnostic> hang(std::string_view text);

std::string ofHang(double seconds, std::string_view version);

/// On one line, for a value.
std::string oneLine(std::string_view text);

}  // namespace ravik::platform::ReportText
