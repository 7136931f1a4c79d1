#pragma once

#include <string>

#include "Core/Base/Time.h"

/// Days and hours of the process's time zone, in English like the rest of the interface.
namespace ravik::LocalDate {

/// "1 Mar"
std::string day(Time time);
/// "Sun 1 Mar · 09:00": the hour is cut.
std::string hour(Time time);

}  // namespace ravik::LocalDate
