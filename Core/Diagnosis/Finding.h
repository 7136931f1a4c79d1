#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "Core/Base/Pids.h"

namespace ravik {

/// End each of these trees; each tree is worked out again when it is acted on.
struct KillTrees {
    Pids pids;
    friend bool operator==(const KillTrees&, const KillTrees&) = default;
};
/// Ask the application with this group name to quit.
struct QuitApp {
    std::string app;
    friend bool operator==(const QuitApp&, const QuitApp&) = default;
};
/// A sentence for the user; the program does nothing.
struct Advice {
    std::string text;
    friend bool operator==(const Advice&, const Advice&) = default;
};
/// Open the disk scan.
struct ScanDisk {
    friend bool operator==(const ScanDisk&, const ScanDisk&) = default;
};
using Remedy = std::variant<KillTrees, QuitApp, Advice, ScanDisk>;

/// The one scale of how a thing may be treated.
enum class Tone { safe, caution, never, advice };

/// One diagnosed cause of a slow machine.
struct Finding {
    enum class Severity { info, warn, critical };

    /// Stable from tick to tick: the kind of cause and, behind a ":", its subject.
    std::string id;
    Severity severity = Severity::info;
    std::string title;
    /// The numbers behind the title, parts joined by " · ".
    std::string evidence;
    Remedy remedy = Advice{};
    /// What the remedy gives back; 0 claims nothing.
    std::uint64_t gainBytes = 0;
    /// Allowed, but the user must be told this first.
    std::optional<std::string> caution;
    /// Ending is forbidden for this reason; the remedy is advice.
    std::optional<std::string> neverReason;
    /// What launched the subject, as a short noun phrase.
    std::optional<std::string> startedBy;

    Tone tone() const;
    const KillTrees* kills() const { return std::get_if<KillTrees>(&remedy); }
    const QuitApp* quits() const { return std::get_if<QuitApp>(&remedy); }

    friend bool operator==(const Finding&, const Finding&) = default;
};

/// "safe", "caution", "never", "advice".
std::string_view word(Tone tone);
/// "info", "warn", "critical".
std::string_view word(Finding::Severity severity);

}  // namespace ravik
