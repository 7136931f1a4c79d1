#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "Core/Diagnosis/Causes/Causes.h"
#include "Core/Wording/Fmt.h"

namespace ravik::causes {

const AgentSession* Pass::ended() const {
    const auto found = std::ranges::find(snap.sessions, false, &AgentSession::alive);
    return found == snap.sessions.end() ? nullptr : &*found;
}

std::string megabytes(std::uint64_t bytes) { return fmt::format("{} MB", Fmt::wholeMB(bytes)); }

// Adding 0 turns a negative zero into a plain one.
std::string whole(double figure) { return fmt::format("{:.0f}", std::trunc(figure) + 0.0); }

std::string percentOf(std::uint64_t bytes, std::uint64_t ram) {
    return whole(static_cast<double>(bytes) * 100 / static_cast<double>(ram));
}

bool isVirtualMachine(const AppGroup& group, const HostTables& tables) {
    return std::ranges::any_of(tables.vmMarkers,
                               [&](std::string_view marker) { return group.id.find(marker) != group.id.npos; });
}

std::vector<const Proc*> biggest(std::vector<const Proc*> procs) {
    std::ranges::stable_sort(procs, std::ranges::greater{}, &Proc::footprintBytes);
    if (procs.size() > 3) procs.resize(3);
    return procs;
}

}  // namespace ravik::causes
