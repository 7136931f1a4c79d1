#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Core/Base/Iso8601.h"

namespace ravik {

/// Reads the moments of lines that follow each other: within one hour, only minutes and seconds are looked at.
class StampReader {
public:
    /// As Iso8601::parse().
    std::optional<Time> read(std::string_view text) {
        if (const auto offset = withinHour(text)) return m_hour + *offset;
        const auto time = Iso8601::parse(text);
        if (time && text.size() == form.size() && text.ends_with('Z')) {
            m_hourText = text.substr(0, minutes);
            m_hour = *time - *withinHour(text);
        }
        return time;
    }

private:
    static constexpr std::string_view form = "2026-03-01T09:30:15Z";
    static constexpr std::size_t minutes = 14;

    /// Seconds past the hour of the text before; absent if this text is of another hour or form.
    std::optional<int> withinHour(std::string_view text) const {
        if (text.size() != form.size() || text.substr(0, minutes) != m_hourText) return {};
        const auto digit = [&](std::size_t at, int most) {
            const int value = text[at] - '0';
            return value >= 0 && value <= most ? value : -3600;
        };
        const int past = (digit(14, 5) * 10 + digit(15, 9)) * 60 + digit(17, 5) * 10 + digit(18, 9);
        if (past < 0 || text[16] != ':' || text[19] != 'Z') return {};
        return past;
    }

    std::string m_hourText;
    Time m_hour = 0;
};

}  // namespace ravik
