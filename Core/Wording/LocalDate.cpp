#include "Core/Wording/LocalDate.h"

#include <array>
#include <cmath>
#include <ctime>

#include <fmt/format.h>

#include "Core/Base/Saturating.h"

namespace ravik::LocalDate {

namespace {

constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array weekdays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

std::tm local(Time time) {
    const auto seconds = static_cast<std::time_t>(saturatingCut(std::floor(time)));
    std::tm parts{};
    localtime_r(&seconds, &parts);
    return parts;
}

}  // namespace

std::string day(Time time) {
    const std::tm parts = local(time);
    return fmt::format("{} {}", parts.tm_mday, months[static_cast<std::size_t>(parts.tm_mon)]);
}

std::string hour(Time time) {
    const std::tm parts = local(time);
    return fmt::format("{} {} · {:02}:00", weekdays[static_cast<std::size_t>(parts.tm_wday)], day(time), parts.tm_hour);
}

}  // namespace ravik::LocalDate
