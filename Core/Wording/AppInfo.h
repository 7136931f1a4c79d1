#pragma once

#include <string>

#include "Core/Base/Time.h"

/// Exact moments as the user reads them: in UTC, and the "Z" says so.
namespace ravik::AppInfo {

/// "09:30:15Z", cut to the second.
std::string clock(Time time);
/// "2026-03-01 09:30Z", cut to the minute.
std::string dayMinute(Time time);

}  // namespace ravik::AppInfo
