#include "Cli/FeedbackCommand.h"

#include <atomic>
#include <filesystem>
#include <memory>

#include <fmt/format.h>

#include "Cli/Table.h"
#include "Core/Reporting/Feedback.h"

namespace ravik::cli {

int runFeedback(Context& context, const Arguments& arguments) {
    const auto given = arguments.value("--into");
    if (given && given->empty()) {
        return refuseWords(context, "feedback", "--into: expected a folder, not \"\"");
    }
    Platform& platform = context.platform();
    std::error_code error;
    const auto into = given ? std::filesystem::absolute(*given, error) : Feedback::destination(platform.folders);
    if (error || !std::filesystem::is_directory(into, error)) {
        context.err << fmt::format("{} is not a folder.\n", printable(into.string()));
        return couldNot;
    }

    // Interrupted, it takes away what it has copied before it ends.
    const auto interrupted = std::make_shared<std::atomic<bool>>(false);
    context.computer.onTermination([interrupted] { *interrupted = true; });
    const auto bundle = await(
        context, Feedback::pack(platform, context.log,
                                {.into = into,
                                 .about = Feedback::about(context.host, RAVIK_VERSION, context.computer.osRelease()),
                                 .reveal = false,
                                 .cancelled = [interrupted] { return interrupted->load(); }}));
    if (!bundle.ok()) {
        context.err << printable(Feedback::failureLine(bundle)) << "\n";
        return couldNot;
    }
    context.out << bundle.zip.string() << "\n";
    return done;
}

}  // namespace ravik::cli
