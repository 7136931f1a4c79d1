#pragma once

namespace ravik {

/// A moment: seconds since 1970-01-01T00:00:00Z, leap seconds not counted.
using Time = double;

/// Stands for "never yet": earlier than any moment a computer reports (0001-01-01T00:00:00Z).
inline constexpr Time distantPast = -62135596800.0;

}  // namespace ravik
