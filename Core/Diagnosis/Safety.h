#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "Core/Host/Host.h"
#include "Core/Watch/ProcessIndex.h"

namespace ravik {

/// Whether a process tree may be ended.
struct Verdict {
    enum class Kind { caution, never, safe };
    Kind kind = Kind::safe;
    /// What the user must read first, or why it must not be; empty when safe.
    std::string reason;

    static Verdict safe() { return {}; }
    static Verdict caution(std::string reason) { return {Kind::caution, std::move(reason)}; }
    static Verdict never(std::string reason) { return {Kind::never, std::move(reason)}; }
    bool isSafe() const { return kind == Kind::safe; }
    bool isCaution() const { return kind == Kind::caution; }
    bool isNever() const { return kind == Kind::never; }

    friend bool operator==(const Verdict&, const Verdict&) = default;
};

/// Nothing is ended without passing through here. Pure functions, any thread.
namespace Safety {

/// From this CPU percentage on a process counts as working.
inline constexpr double busyPercent = 5.0;

/// Judges one whole tree, in the order of the process list. One forbidden process forbids all of it.
Verdict check(const std::vector<Proc>& tree, const Host& host);

/// The root, where it exists, and all its descendants, in the order of the process list.
std::vector<Proc> tree(Pid root, const ProcessIndex& procs);

/// Judges many trees at once. Another user's root is never to be ended; a root that does not exist is safe.
std::unordered_map<Pid, Verdict> verdicts(const Pids& roots, const ProcessIndex& procs, const Host& host);

}  // namespace Safety

}  // namespace ravik
