#pragma once

#include <string_view>

#include "Core/Record/Log.h"
#include "Core/Watch/Thresholds.h"

/// The row on the Autopilot screen for the one rule that acts without having learned: ending leftovers by itself.
namespace ravik::LiveLeftoversRule {

inline constexpr std::string_view title = "End leftovers from AI tools automatically, once older than";
inline constexpr std::string_view note =
    "Not one of the learning rules above: this works now, and ends only what passes the safety check.";
inline constexpr double lowestHours = 0.25;
inline constexpr double highestHours = 168;

/// Switches the rule and logs it; the caller saves the limits.
void setOn(Thresholds& limits, bool on, Log& log);
/// True if the limits changed and are to be saved: a value outside the range, both ends included, is ignored.
bool setHours(Thresholds& limits, double hours);

}  // namespace ravik::LiveLeftoversRule
