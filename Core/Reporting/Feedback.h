#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "Core/Base/Task.h"
#include "Core/Host/Host.h"
#include "Core/Record/Log.h"
#include "Core/Reporting/Diagnostics.h"
#include "Platform/Platform.h"

/// The feedback bundle as a user asks for it. Main loop; the packing itself runs beside it. Started with spawn() or
/// awaited; platform and log live as long as the loop.
namespace ravik::Feedback {

/// The one line of about.txt. `osRelease` is the text of os-release, or what another system says of its version.
std::string about(const Host& host, std::string_view version, std::string_view osRelease);

/// The user's desktop folder, or home where there is none.
std::filesystem::path destination(const Folders& folders);

struct Request {
    /// An absolute path.
    std::filesystem::path into;
    std::string about;
    /// Shows the zip in the file manager.
    bool reveal = true;
    /// Any thread; may be empty.
    std::function<bool()> cancelled = {};
};

/// Builds a bundle and logs how that went.
Task<Diagnostics::Bundle> pack(Platform& platform, Log& log, Request request);

/// The same into destination(), revealed; the line for the screen.
Task<std::string> build(Platform& platform, Log& log, std::string about);

/// "Could not create the feedback bundle: {error}"
std::string failureLine(const Diagnostics::Bundle& bundle);

}  // namespace ravik::Feedback
