#include "Core/Reporting/Usage.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Core/Autopilot/Decision.h"
#include "Core/Base/Iso8601.h"
#include "Core/Base/Saturating.h"
#include "Core/Record/LineValue.h"
#include "Core/Record/LogFiles.h"
#include "Core/Record/LogReader.h"

namespace ravik::Usage {

namespace {

constexpr std::array<std::string_view, 12> findingKinds{"leftovers", "automation", "db",      "orphan",
                                                        "hog",       "vm",         "browser", "holder",
                                                        "sessions",  "thrash",     "disk",    "indexing"};

using Counts = std::map<std::string, std::int64_t>;

class Tally {
public:
    void add(const nlohmann::json& line) {
        if (!line.is_object()) return;
        const auto kind = LineValue::text(line, "kind");
        if (!kind) return;
        if (*kind == "tick") {
            tick(line);
        } else if (*kind == "finding") {
            ++m_findings[kindOf(line, "id")];
        } else if (*kind == "remedy") {
            remedy(line);
        } else if (*kind == "fixAll") {
            ++m_counts[LineValue::boolean(line, "cancelled") == true ? "freeCancelled" : "free"];
        } else if (*kind == "window") {
            open(line);
        } else if (*kind == "notifications") {
            m_alertsAllowed = !LineValue::boolean(line, "denied").value_or(false);
        } else if (*kind == "shadowDecision") {
            shadow(line, "decided");
        } else if (*kind == "shadowOutcome") {
            shadow(line, isRegret(line) ? "regret" : "held");
        } else {
            ++m_counts[*kind];
        }
    }

    nlohmann::json report(std::string_view day, const About& about) const {
        nlohmann::json result{{"v", 1},
                              {"id", about.id},
                              {"day", day},
                              {"app", about.version},
                              {"os", about.os},
                              {"ramGB", std::llround(static_cast<double>(about.ramBytes) * 0x1p-30)},
                              {"counts", m_counts},
                              {"findings", m_findings},
                              {"fixed", m_fixed},
                              {"freedMB", m_freedMB},
                              {"safety", m_safety}};
        if (m_alertsAllowed) result["alertsAllowed"] = *m_alertsAllowed;
        return result;
    }

private:
    static std::string kindOf(const nlohmann::json& line, std::string_view key) {
        return std::string(findingKind(LineValue::text(line, key).value_or("")));
    }
    static bool isRegret(const nlohmann::json& line) {
        return LineValue::text(line, "outcome").value_or("").starts_with("regret");
    }

    void tick(const nlohmann::json& line) {
        ++m_counts["samples"];
        const auto breaches = line.find("breaches");
        if (breaches != line.end() && breaches->is_array() && !breaches->empty()) ++m_counts["pressureSamples"];
    }
    void remedy(const nlohmann::json& line) {
        if (!line.contains("survivors")) {
            ++m_counts["remedyRefused"];
            return;
        }
        ++m_fixed[kindOf(line, "finding")];
        m_freedMB = saturatingAdd(m_freedMB, LineValue::whole(line, "gainMB").value_or(0));
    }
    void open(const nlohmann::json& line) {
        if (LineValue::boolean(line, "open") == true) ++m_counts["windowOpens"];
    }
    /// Only the three known actions, so that no other text of a line gets into the report.
    void shadow(const nlohmann::json& line, const char* what) {
        const auto action = parseAction(LineValue::text(line, "action").value_or(""));
        if (action) ++m_safety[std::string(word(*action))][what];
    }

    Counts m_counts, m_findings, m_fixed;
    std::map<std::string, Counts> m_safety;
    std::int64_t m_freedMB = 0;
    std::optional<bool> m_alertsAllowed;
};

std::string_view unquoted(std::string_view value) {
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front()) {
        return value.substr(1, value.size() - 2);
    }
    return value;
}

}  // namespace

std::string_view findingKind(std::string_view id) {
    const std::string_view kind = id.substr(0, id.find(':'));
    return std::find(findingKinds.begin(), findingKinds.end(), kind) != findingKinds.end() ? kind : "other";
}

std::vector<std::string> due(std::span<const std::string> logDays, const std::optional<std::string>& sent,
                             std::string_view today) {
    const std::string_view after = sent ? std::string_view(*sent) : today;
    std::vector<std::string> days;
    std::copy_if(logDays.begin(), logDays.end(), std::back_inserter(days),
                 [&](const std::string& day) { return day < today && day > after; });
    return days;
}

nlohmann::json report(std::string_view day, std::span<const nlohmann::json> lines, const About& about) {
    Tally tally;
    for (const auto& line : lines) tally.add(line);
    return tally.report(day, about);
}

nlohmann::json reportOfDay(const std::filesystem::path& logFolder, const std::string& day, const About& about) {
    Tally tally;
    LogReader::forEachLine(logFolder, kinds, std::set<std::string>{day}, [&](const auto& line) { tally.add(line); });
    return tally.report(day, about);
}

std::optional<std::string> refusal(const std::filesystem::path& logFolder, const std::string& day) {
    const auto days = logDays(logFolder);
    if (std::find(days.begin(), days.end(), day) != days.end()) return {};
    return fmt::format("There is no log of {}.", day);
}

std::string preview(const std::filesystem::path& logFolder, const std::string& today, About about) {
    if (about.id.empty()) about.id = noID;
    return reportOfDay(logFolder, today, about).dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string osName(std::string_view osRelease) {
    std::string_view name, version;
    while (!osRelease.empty()) {
        const std::size_t end = osRelease.find('\n');
        const std::string_view line = osRelease.substr(0, end);
        osRelease.remove_prefix(end == std::string_view::npos ? osRelease.size() : end + 1);
        if (line.starts_with("ID=")) name = unquoted(line.substr(3));
        if (line.starts_with("VERSION_ID=")) version = unquoted(line.substr(11));
    }
    if (name.empty() || version.empty()) return std::string(name);
    return fmt::format("{} {}", name, version);
}

bool isDay(std::string_view text) { return text.size() == 10 && Iso8601::parse(fmt::format("{}T00:00:00Z", text)); }

}  // namespace ravik::Usage
