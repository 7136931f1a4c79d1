#include "Cli/EndCommand.h"

#include <charconv>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Cli/Reader.h"
#include "Cli/Table.h"
#include "Cli/TerminalAsker.h"
#include "Core/Diagnosis/Classifier.h"

namespace ravik::cli {

namespace {

using Outcome = Actions::Outcome;

std::string_view word(Outcome::Kind kind) {
    switch (kind) {
        case Outcome::Kind::nothing: return "nothing";
        case Outcome::Kind::cancelled: return "cancelled";
        case Outcome::Kind::refused: return "refused";
        case Outcome::Kind::needsConfirmation: return "needsConfirmation";
        case Outcome::Kind::ended: return "ended";
    }
    return "nothing";
}

/// Runs one action and tells what came of it. `nothing` is the sentence for an action that had nothing to do.
template <typename Start>
int act(Context& context, const Arguments& arguments, Monitor& monitor, std::string_view nothing, Start start) {
    TerminalAsker asker(context, arguments.has("--yes"));
    Actions actions(monitor, asker);
    const std::optional<std::string> line = await(context, start(actions));
    const Outcome& outcome = actions.outcome();
    if (arguments.has("--json")) {
        nlohmann::json result{{"outcome", word(outcome.kind)}, {"survivors", outcome.survivors}, {"line", nullptr}};
        if (line) result["line"] = *line;
        context.out << result.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
    } else if (line) {
        context.out << printable(*line) << "\n";
    } else if (outcome.kind == Outcome::Kind::nothing) {
        context.out << nothing << "\n";
    }
    if (asker.foundNobody()) {
        context.err << "Nothing was ended: there is nobody to ask here; --yes answers for a script.\n";
    }
    const bool went =
        outcome.kind == Outcome::Kind::nothing || (outcome.kind == Outcome::Kind::ended && outcome.survivors.empty());
    return went ? done : couldNot;
}

}  // namespace

int runEnd(Context& context, const Arguments& arguments) {
    const std::string text = *arguments.value("PID");
    Pid pid = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), pid);
    if (error != std::errc{} || end != text.data() + text.size() || pid < 1) {
        return refuseWords(context, "end",
                           fmt::format("expected a process id, a whole number above 0, not \"{}\"", printable(text)));
    }
    const auto monitor = readTwice(context);
    const ProcessIndex index(monitor->snapshot().processes);
    const Proc* proc = index.find(pid);
    if (!proc) {
        context.err << fmt::format("There is no process {}.\n", pid);
        return couldNot;
    }
    const std::string label = Classifier::group(*proc, monitor->host());
    return act(context, arguments, *monitor, "", [&](Actions& actions) { return actions.end(pid, label); });
}

int runFree(Context& context, const Arguments& arguments) {
    const auto monitor = readTwice(context);
    return act(context, arguments, *monitor, "Nothing is safe to end in one click.",
               [](Actions& actions) { return actions.freeAll({}); });
}

int runQuit(Context& context, const Arguments& arguments) {
    const std::string app = *arguments.value("APP");
    const auto monitor = readTwice(context);
    std::uint64_t bytes = 0;
    for (const AppGroup& group : monitor->snapshot().groups) {
        if (group.id == app) bytes = group.footprintBytes;
    }
    return act(context, arguments, *monitor, "", [&](Actions& actions) { return actions.quit(app, bytes); });
}

int runFix(Context& context, const Arguments& arguments) {
    const std::string id = *arguments.value("ID");
    const auto monitor = readTwice(context);
    for (const Finding& finding : monitor->snapshot().findings) {
        if (finding.id != id) continue;
        if (!finding.kills() && !finding.quits()) {
            context.err << fmt::format("{}: nothing to run\n", printable(id));
            return couldNot;
        }
        return act(context, arguments, *monitor, "", [&](Actions& actions) { return actions.run(finding); });
    }
    context.err << fmt::format("There is no finding \"{}\" now; ravik diagnose lists them.\n", printable(id));
    return couldNot;
}

}  // namespace ravik::cli
