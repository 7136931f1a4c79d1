#include "Cli/KeepCommand.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Cli/Table.h"
#include "Core/Diagnosis/KeepList.h"
#include "Core/Reading/Json.h"
#include "Core/Watch/Monitor.h"
#include "Core/Wording/Fmt.h"

namespace ravik::cli {

namespace {

bool runsNow(Context& context, const std::string& command) {
    Monitor monitor(context.platform(), context.log, context.host, Monitor::Role::reader);
    monitor.readNow();
    return std::ranges::find(monitor.snapshot().processes, command, &Proc::command) !=
           monitor.snapshot().processes.end();
}

}  // namespace

int runKeepList(Context& context, const Arguments& arguments) {
    const std::vector<std::string> sorted = KeepList(context.platform().defaults).sorted();
    if (arguments.has("--json")) {
        context.out << printableJson(Json::text(nlohmann::json(sorted), -1)) << "\n";
        return done;
    }
    for (const std::string& command : sorted) context.out << printable(command) << "\n";
    if (sorted.empty()) context.out << "Nothing is kept.\n";
    return done;
}

int runKeepAdd(Context& context, const Arguments& arguments) {
    const std::string command = *arguments.value("CMD");
    if (command.find_first_not_of(' ') == std::string::npos) {
        return refuseWords(context, "keep add", fmt::format("CMD: expected a command line, not \"{}\"", command));
    }
    if (!KeepList(context.platform().defaults).add(command)) {
        context.err << "ravik keep: the settings could not be written\n";
        return couldNot;
    }
    context.log.event("keep", {{"cmd", std::string(Fmt::firstScalars(command, 160))}});
    if (!runsNow(context, command)) {
        context.err << "Kept, but nothing runs now with exactly this command line; ravik ps --json tells them whole.\n";
    }
    return done;
}

int runKeepRemove(Context& context, const Arguments& arguments) {
    const std::string command = *arguments.value("CMD");
    KeepList list(context.platform().defaults);
    const bool wasKept = list.commands().contains(command);
    if (!list.remove(command)) {
        context.err << "ravik keep: the settings could not be written\n";
        return couldNot;
    }
    if (!wasKept) context.err << fmt::format("\"{}\" was not kept; ravik keep lists what is.\n", printable(command));
    return done;
}

}  // namespace ravik::cli
