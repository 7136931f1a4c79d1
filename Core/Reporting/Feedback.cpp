#include "Core/Reporting/Feedback.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Core/Reporting/Usage.h"

namespace ravik::Feedback {

std::string about(const Host& host, std::string_view version, std::string_view osRelease) {
    const std::string name = host.isMac() ? std::string(osRelease) : Usage::osName(osRelease);
    std::string system(host.nouns().system);
    if (!name.empty()) system += " " + name;
    return Diagnostics::about(version, system);
}

std::filesystem::path destination(const Folders& folders) {
    std::error_code unknown;
    return std::filesystem::is_directory(folders.desktop, unknown) ? folders.desktop : folders.home;
}

Task<Diagnostics::Bundle> pack(Platform& platform, Log& log, Request request) {
    const Folders& folders = platform.folders;
    const Diagnostics::Contents contents{folders.log, folders.crashReports, request.about};
    Callback<Diagnostics::Bundle> packing([&](auto resume) {
        platform.loop.background([=, &platform, &log, into = request.into, cancelled = request.cancelled] {
            // What led here is to be in it.
            log.flush();
            auto bundle = Diagnostics::makeFeedbackBundle(into, contents, platform.folders.temporary,
                                                          platform.clock.now(), platform.archive, cancelled);
            platform.loop.post([resume, bundle = std::move(bundle)] { resume(bundle); });
        });
    });
    const Diagnostics::Bundle bundle = co_await packing;
    if (bundle.ok()) {
        if (request.reveal) platform.fileViewer.reveal(bundle.zip);
        log.event("feedback", {{"ok", true}});
    } else {
        log.event("feedback", {{"error", bundle.error}});
    }
    co_return bundle;
}

Task<std::string> build(Platform& platform, Log& log, std::string about) {
    const Folders& folders = platform.folders;
    // GCC 12 destroys an aggregate twice that is made within an awaiting expression.
    Request request;
    request.into = destination(folders);
    request.about = std::move(about);
    const bool isHome = request.into == folders.home;
    const auto bundle = co_await pack(platform, log, std::move(request));
    if (!bundle.ok()) co_return failureLine(bundle);
    co_return isHome ? "Saved to your home folder" : "Saved to the Desktop";
}

std::string failureLine(const Diagnostics::Bundle& bundle) {
    return fmt::format("Could not create the feedback bundle: {}", bundle.error);
}

}  // namespace ravik::Feedback
