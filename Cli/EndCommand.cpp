#include "Cli/EndCommand.h"

#include <algorithm>
#include <charconv>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Cli/Reader.h"
#include "Cli/Table.h"
#include "Cli/TerminalAsker.h"
#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/Rx.h"
#include "Core/Reading/Json.h"

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

void printOutcome(Context& context, Outcome::Kind kind, const Pids& survivors, const std::optional<std::string>& line) {
    nlohmann::json result{{"outcome", word(kind)}, {"survivors", survivors}, {"line", nullptr}};
    if (line) result["line"] = *line;
    context.out << printableJson(Json::text(result, -1)) << "\n";
}

/// Says why nothing was tried.
int refuse(Context& context, const Arguments& arguments, const std::string& why) {
    if (arguments.has("--json")) {
        printOutcome(context, Outcome::Kind::refused, {}, why);
    } else {
        context.err << printable(why) << "\n";
    }
    return couldNot;
}

/// Whether there is somebody whom a person would mean by the application's name.
bool isThere(Context& context, const Monitor& monitor, const std::string& app) {
    const std::vector<Proc>& procs = monitor.snapshot().processes;
    const ProcessIndex index(procs);
    const auto isOwn = [](const Proc& proc) { return !Rx::automationProfile().matches(proc.command); };
    const auto isNamed = [&](const RunningApp& each) {
        const Proc* proc = index.find(each.pid);
        return (each.bundleName == app || each.localizedName == app) && (!proc || isOwn(*proc));
    };
    return std::ranges::any_of(context.platform().workspace.running(), isNamed) ||
           std::ranges::any_of(procs, [&](const Proc& proc) {
               return proc.uid == context.host.uid && isOwn(proc) && Classifier::group(proc, context.host) == app;
           });
}

/// Runs one action and tells what came of it. `nothing` is the sentence for an action that had nothing to do.
template <typename Start>
int act(Context& context, const Arguments& arguments, Monitor& monitor, std::string_view nothing, Start start) {
    TerminalAsker asker(context, arguments.has("--yes"));
    Actions actions(monitor, asker);
    const std::optional<std::string> line = await(context, start(actions));
    const Outcome& outcome = actions.outcome();
    if (arguments.has("--json")) {
        printOutcome(context, outcome.kind, outcome.survivors, line);
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
    if (!proc) return refuse(context, arguments, fmt::format("There is no process {}.", pid));
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
    // An application that has gone counts as one that quit; a name mistyped should not pass for that.
    if (!isThere(context, *monitor, app)) {
        context.err << fmt::format("Nothing called \"{}\" is running; ravik apps lists what is.\n", printable(app));
    }
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
        if (!finding.kills() && !finding.quits()) return refuse(context, arguments, id + ": nothing to run");
        return act(context, arguments, *monitor, "", [&](Actions& actions) { return actions.run(finding); });
    }
    return refuse(context, arguments, fmt::format("There is no finding \"{}\" now; ravik diagnose lists them.", id));
}

}  // namespace ravik::cli
