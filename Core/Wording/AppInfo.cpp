#include "Core/Wording/AppInfo.h"

#include <cmath>

#include <fmt/format.h>

#include "Core/Base/Iso8601.h"

namespace ravik::AppInfo {

std::string clock(Time time) {
    constexpr double day = 86400;
    double second = std::fmod(std::floor(time), day);
    if (second < 0) second += day;
    const int whole = std::isfinite(second) ? static_cast<int>(second) : 0;
    return fmt::format("{:02}:{:02}:{:02}Z", whole / 3600, whole / 60 % 60, whole % 60);
}

std::string dayMinute(Time time) {
    const std::string text = Iso8601::format(time);
    return text.substr(0, text.find('T')) + " " + clock(time).substr(0, 5) + "Z";
}

}  // namespace ravik::AppInfo
