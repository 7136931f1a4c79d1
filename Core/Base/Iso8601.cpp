#include "Core/Base/Iso8601.h"

#include <chrono>
#include <cmath>
#include <ctime>

#include <fmt/format.h>

namespace ravik::Iso8601 {

namespace {

/// Takes exactly `digits` digits off the front.
std::optional<int> number(std::string_view& text, std::size_t digits) {
    if (text.size() < digits) return {};
    int value = 0;
    for (std::size_t at = 0; at < digits; ++at) {
        if (text[at] < '0' || text[at] > '9') return {};
        value = value * 10 + (text[at] - '0');
    }
    text.remove_prefix(digits);
    return value;
}

bool skip(std::string_view& text, char expected) {
    if (!text.starts_with(expected)) return false;
    text.remove_prefix(1);
    return true;
}

/// Seconds east of UTC; takes all that is left.
std::optional<int> zone(std::string_view text) {
    if (text == "Z") return 0;
    const int sign = text.starts_with('-') ? -1 : 1;
    if (!skip(text, '+') && !skip(text, '-')) return {};
    const auto hours = number(text, 2);
    skip(text, ':');
    const auto minutes = number(text, 2);
    if (!hours || !minutes || *hours > 23 || *minutes > 59 || !text.empty()) return {};
    return sign * (*hours * 3600 + *minutes * 60);
}

std::tm local(Time time) {
    const auto seconds = static_cast<std::time_t>(std::floor(time));
    std::tm parts{};
    localtime_r(&seconds, &parts);
    return parts;
}

}  // namespace

std::string format(Time time) {
    using namespace std::chrono;
    const sys_seconds moment{seconds(static_cast<std::int64_t>(std::floor(time)))};
    const auto day = floor<days>(moment);
    const year_month_day date(day);
    const hh_mm_ss clock(moment - day);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count());
}

std::optional<Time> parse(std::string_view text) {
    using namespace std::chrono;
    const auto y = number(text, 4);
    if (!y || !skip(text, '-')) return {};
    const auto mo = number(text, 2);
    if (!mo || !skip(text, '-')) return {};
    const auto d = number(text, 2);
    if (!d || !skip(text, 'T')) return {};
    const auto h = number(text, 2);
    if (!h || !skip(text, ':')) return {};
    const auto mi = number(text, 2);
    if (!mi || !skip(text, ':')) return {};
    const auto s = number(text, 2);
    const auto east = zone(text);
    if (!s || !east || *h > 23 || *mi > 59 || *s > 59) return {};
    const year_month_day date{year{*y}, month{static_cast<unsigned>(*mo)}, day{static_cast<unsigned>(*d)}};
    if (!date.ok()) return {};
    const auto midnight = sys_days(date).time_since_epoch();
    return static_cast<Time>(duration_cast<seconds>(midnight).count() + *h * 3600 + *mi * 60 + *s - *east);
}

std::string localDay(Time time) {
    const std::tm parts = local(time);
    return fmt::format("{:04}-{:02}-{:02}", parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday);
}

std::string localClock(Time time) {
    const std::tm parts = local(time);
    return fmt::format("{:02}:{:02}:{:02}", parts.tm_hour, parts.tm_min, parts.tm_sec);
}

}  // namespace ravik::Iso8601
