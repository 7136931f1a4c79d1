#include "Cli/AutopilotCommand.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Cli/HistoryCommands.h"
#include "Cli/Table.h"
#include "Core/Autopilot/Approvals.h"
#include "Core/Autopilot/ShadowJson.h"
#include "Core/Reading/Json.h"
#include "Core/Record/LogReader.h"

namespace ravik::cli {

namespace {

ShadowRecord readRecord(const Context& context, const Arguments& arguments) {
    return ShadowRecord::build(LogReader::lines(logFolder(context, arguments), ShadowRecord::kinds));
}

/// The rule that the caller named; absent, with a line that says what is expected, if it has no switch. Ending cannot
/// be undone and has none.
std::optional<Decision::Action> named(Context& context, const Arguments& arguments, std::string_view command) {
    const std::string text = arguments.value("RULE").value_or("");
    const auto action = parseAction(text);
    if (action && *action != Decision::Action::end) return action;
    refuseWords(context, command, fmt::format("expected pause or demote, not \"{}\"", printable(text)));
    return {};
}

int store(Context& context, Decision::Action action, bool approve) {
    Approvals approvals(context.platform().defaults);
    auto actions = approvals.actions();
    const bool changes = approve ? actions.insert(action).second : actions.erase(action) > 0;
    if (changes) {
        if (!approvals.setActions(actions)) {
            context.err << "ravik autopilot: the settings could not be written\n";
            return couldNot;
        }
        context.log.event("autopilotApproval", {{"action", word(action)}, {"approved", approve}});
    }
    context.out << AutopilotScreen::name(action) << (approve ? ": on, undoable for 10 minutes\n" : ": off\n");
    return done;
}

}  // namespace

int runAutopilot(Context& context, const Arguments& arguments) {
    const ShadowRecord record = readRecord(context, arguments);
    const auto approved = Approvals(context.platform().defaults).actions();
    if (arguments.has("--json")) {
        context.out << printableJson(Json::text(ShadowJson::object(record, approved))) << "\n";
        return done;
    }
    context.out << printableLines(ShadowJson::text(record, approved, context.platform().workspace.knowsFocus()));
    return done;
}

int runAutopilotApprove(Context& context, const Arguments& arguments) {
    const auto action = named(context, arguments, "autopilot approve");
    if (!action) return wrongWords;
    if (!Approvals(context.platform().defaults).actions().contains(*action)) {
        const ShadowRecord record = readRecord(context, arguments);
        const auto standing = record.standing(*std::ranges::find(record.rules, *action, &ShadowRecord::Rule::action));
        if (!std::holds_alternative<ShadowRecord::Ready>(standing)) {
            context.err << fmt::format("\"{}\" cannot be turned on: {}.\n", AutopilotScreen::name(*action),
                                       AutopilotScreen::status(standing));
            return couldNot;
        }
    }
    return store(context, *action, true);
}

int runAutopilotWithdraw(Context& context, const Arguments& arguments) {
    const auto action = named(context, arguments, "autopilot withdraw");
    return action ? store(context, *action, false) : static_cast<int>(wrongWords);
}

}  // namespace ravik::cli
