#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Core/Record/DayAggregate.h"

namespace ravik::WeekProof {

/// "This week: 1 runaway named · 3 fixes · 2.0 GB given back", without the clauses that have nothing to say; absent
/// where none has. Days are those of the process's time zone.
std::optional<std::string> line(const std::vector<DayAggregate>& days, Time now);

}  // namespace ravik::WeekProof
