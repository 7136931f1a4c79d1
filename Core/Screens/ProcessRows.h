#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "Core/Host/Host.h"
#include "Core/Watch/ProcessIndex.h"
#include "Core/Watch/Snapshot.h"

namespace ravik {

/// One line of the Processes screen.
struct ProcRow {
    /// "pid:{pid}" or "app:{group}".
    std::string id;
    /// What the "Name" column shows: a process's command line, a group's name.
    std::string command;
    std::int64_t mb = 0;
    double cpu = 0;
    /// Seconds; of an app, its oldest process's.
    double age = 0;
    /// Absent on an app row.
    std::optional<Pid> pid;
    /// The group's name, where the row is one running application that may be asked to quit.
    std::optional<std::string> app;
    /// safe, caution or never.
    Tone tone = Tone::safe;
    /// A short reason for the tone.
    std::optional<std::string> word;

    friend bool operator==(const ProcRow&, const ProcRow&) = default;
};

namespace ProcessRows {

enum class Scope { apps, leftovers, all };

/// Names of running applications, localized and bundle names alike.
using Running = std::unordered_set<std::string>;

/// The rows of a scope that hold `query` in their name or command, case aside; unsorted. `index` is over
/// `snapshot.processes`.
std::vector<ProcRow> rows(const Snapshot& snapshot, const ProcessIndex& index, Scope scope, std::string_view query,
                          const Running& running, const Host& host, Time now);

}  // namespace ProcessRows

}  // namespace ravik
