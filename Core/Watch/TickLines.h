#pragma once

#include <optional>

#include <nlohmann/json_fwd.hpp>

#include "Core/Watch/Snapshot.h"

/// The fields of the log lines that a tick writes.
namespace ravik::TickLines {

nlohmann::json tick(const Snapshot& snapshot);
/// For a snapshot with findings.
nlohmann::json diagnosis(const Snapshot& snapshot);
nlohmann::json finding(const Finding& finding);
/// The program's own weight; absent if its process was not scanned.
std::optional<nlohmann::json> self(const Snapshot& snapshot, Pid pid);

}  // namespace ravik::TickLines
