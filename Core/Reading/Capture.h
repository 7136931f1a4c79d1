#pragma once

#include <filesystem>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "Core/Autopilot/Engine.h"
#include "Core/Watch/Reading.h"

namespace ravik {

/// A captured reading: what a bug report carries and what a replay starts from. Its form is written down in
/// docs/capture.md; do not change what a key means.
struct Capture {
    static constexpr int format = 1;

    Reading reading;
    /// Names of running applications, localized and bundle names alike.
    std::vector<std::string> running;
    /// Group id of the application in front.
    std::optional<std::string> foreground;
    Engine::History engineHistory;
    /// The Processes screen's search text.
    std::string query;
};

struct CaptureResult {
    /// Absent if it was refused.
    std::optional<Capture> capture;
    /// One line that names the key: "processes[3].ppid: expected a whole number". Empty if all went well.
    std::string error;
};

/// Reads a capture strictly: a wrong type or a missing key refuses it all. Unknown keys are passed over. `machine`
/// stands where the capture does not say whose tables apply. Any bytes may be given.
CaptureResult readCapture(std::string_view text, HostKind machine);

/// The same from a stream, which an error calls `name`. Of 1 GiB at most.
CaptureResult readCaptureStream(std::istream& stream, const std::string& name, HostKind machine);
/// The same from a file.
CaptureResult readCaptureFile(const std::filesystem::path& path, HostKind machine);

/// The JSON form of a capture.
nlohmann::json captureJson(const Capture& capture);

/// {"busySince": {pid: time}, "held": [{"at", "bytes": {group: bytes}}]}
nlohmann::json trendJson(const Trend& trend);

}  // namespace ravik
