#pragma once

#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "Core/Autopilot/Decision.h"
#include "Core/Ending/Confirmation.h"
#include "Core/Screens/ProcessRows.h"
#include "Core/Watch/ProcessIndex.h"
#include "Core/Watch/Snapshot.h"
#include "Core/Wording/MemoryPicture.h"

/// The JSON that the reading commands print. Keys are the names of the fields; sizes in bytes, absent values null.
namespace ravik::Json {

/// How many lines of a finding's tree are given.
inline constexpr std::size_t treeLines = 50;

/// From "breaches" to "gapLine". `index` is over `snapshot.processes`.
nlohmann::json diagnosis(const Snapshot& snapshot, const ProcessIndex& index, const Host& host, Time now);
nlohmann::json finding(const Finding& finding, const Snapshot& snapshot, const ProcessIndex& index, const Host& host,
                       Time now);
nlohmann::json groups(const std::vector<AppGroup>& groups);
nlohmann::json sessions(const std::vector<AgentSession>& sessions);
nlohmann::json rows(const std::vector<ProcRow>& rows);
nlohmann::json confirmation(const Confirmation& question);
nlohmann::json memory(const MemoryPicture& picture);
nlohmann::json decisions(const std::vector<Decision>& decisions);

/// The text of a value; what is no valid UTF-8 in it is replaced. `indent` -1: on one line.
std::string text(const nlohmann::json& value, int indent = 2);

}  // namespace ravik::Json
