#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Core/Diagnosis/KeepList.h"
#include "Core/Diagnosis/Trend.h"
#include "Core/Host/Host.h"
#include "Core/Watch/ProcessIndex.h"
#include "Core/Watch/Snapshot.h"
#include "Core/Watch/Thresholds.h"

namespace ravik {

/// Turns a snapshot into its causes. Pure functions, any thread.
namespace Diagnoser {

/// All causes, gated and ordered: higher severity first, then higher gain, then the order of the pass.
/// `snapshot.findings` is not read. `index` is over `snapshot.processes`; `trend` is that of the previous tick.
std::vector<Finding> diagnose(const Snapshot& snapshot, const ProcessIndex& index, const Thresholds& limits,
                              std::uint64_t ramBytes, const KeepSet& keep, const Trend& trend, const Host& host,
                              Time now);

/// Applies the keep list and the safety check to one finding: what may not be ended keeps its place in the list
/// but loses its remedy.
Finding gate(const Finding& finding, const ProcessIndex& index, const KeepSet& keep, const Host& host);

/// "59 min", "47 h", "2 days": cut, no singular.
std::string hours(double seconds);

/// How to stop a database server by its own means.
std::string stopCommand(const Proc& proc, const Host& host);

}  // namespace Diagnoser

}  // namespace ravik
