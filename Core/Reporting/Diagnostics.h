#pragma once

#include <filesystem>
#include <functional>
#include <span>
#include <string>

#include "Core/Base/Time.h"
#include "Core/Record/Log.h"
#include "Platform/Platform.h"

/// What the program says about its own crashes and hangs, and the bundle that a user can send. Nothing here uses the
/// network.
namespace ravik::Diagnostics {

/// Each crash and each hang becomes a line of the log. Any thread.
void didReceive(std::span<const DiagnosticPayload> payloads, Log& log);

/// At the start of a program that stays: tells what earlier runs left, then watches this one. Main loop.
void begin(CrashReports& reports, Log& log, const std::string& version);

/// What goes into a bundle.
struct Contents {
    std::filesystem::path logs;
    std::filesystem::path crashReports;
    /// The one line of "about.txt".
    std::string about;
};

/// "Ravik 0.1.0 · Linux debian 12"; `system` is what the operating system says of itself, after its kind.
std::string about(std::string_view version, std::string_view system);

struct Bundle {
    std::filesystem::path zip;
    /// Why there is none, as a sentence; empty if there is one.
    std::string error;

    bool ok() const { return error.empty(); }
};

/// Packs logs, crash reports and about.txt into "Ravik-feedback-{seconds}.zip" below `folder`. Takes as long as
/// copying the log does; any thread. Nothing stays in `temporary`, whatever the outcome; gives up soon after
/// `cancelled` says true.
Bundle makeFeedbackBundle(const std::filesystem::path& folder, const Contents& contents,
                          const std::filesystem::path& temporary, Time now, Archive& archive,
                          const std::function<bool()>& cancelled = {});

}  // namespace ravik::Diagnostics
