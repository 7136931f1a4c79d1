#include "Core/Record/WeekProof.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Core/Base/Iso8601.h"
#include "Core/Base/Saturating.h"
#include "Core/Wording/Fmt.h"

namespace ravik::WeekProof {

namespace {

constexpr double weekSeconds = 604800;

std::uint64_t runaways(const DayAggregate& day) {
    std::uint64_t count = 0;
    for (const auto& [id, title] : day.titles) {
        if (id.starts_with("holder:") && title.find(" grew ") != std::string::npos) ++count;
    }
    return count;
}

}  // namespace

std::optional<std::string> line(const std::vector<DayAggregate>& days, Time now) {
    const Time weekAgo = now - weekSeconds;
    const std::string firstDay = Iso8601::localDay(weekAgo);
    std::uint64_t named = 0;
    std::uint64_t fixes = 0;
    std::int64_t mb = 0;
    for (const DayAggregate& day : days) {
        if (day.day < firstDay) continue;
        named += runaways(day);
        for (const HistoryEvent& event : day.events) {
            if (event.at < weekAgo) continue;
            ++fixes;
            mb = saturatingAdd(mb, event.mb);
        }
    }
    std::vector<std::string> clauses;
    if (named > 0) clauses.push_back(Fmt::plural(named, "runaway") + " named");
    if (fixes > 0) clauses.push_back(fmt::format("{} {}", fixes, fixes == 1 ? "fix" : "fixes"));
    if (mb >= 1) clauses.push_back(Fmt::amountText(saturatingBytes(mb)) + " given back");
    if (clauses.empty()) return {};
    return fmt::format("This week: {}", fmt::join(clauses, " · "));
}

}  // namespace ravik::WeekProof
