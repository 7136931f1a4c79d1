#include "Cli/KeepCommand.h"

#include <nlohmann/json.hpp>

#include "Cli/Table.h"
#include "Core/Diagnosis/KeepList.h"
#include "Core/Wording/Fmt.h"

namespace ravik::cli {

int runKeepList(Context& context, const Arguments& arguments) {
    const std::vector<std::string> sorted = KeepList(context.platform().defaults).sorted();
    if (arguments.has("--json")) {
        context.out << nlohmann::json(sorted).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
        return done;
    }
    for (const std::string& command : sorted) context.out << printable(command) << "\n";
    if (sorted.empty()) context.out << "Nothing is kept.\n";
    return done;
}

int runKeepAdd(Context& context, const Arguments& arguments) {
    const std::string command = *arguments.value("CMD");
    if (!KeepList(context.platform().defaults).add(command)) {
        context.err << "ravik keep: the settings could not be written\n";
        return couldNot;
    }
    context.log.event("keep", {{"cmd", std::string(Fmt::firstScalars(command, 160))}});
    return done;
}

int runKeepRemove(Context& context, const Arguments& arguments) {
    if (!KeepList(context.platform().defaults).remove(*arguments.value("CMD"))) {
        context.err << "ravik keep: the settings could not be written\n";
        return couldNot;
    }
    return done;
}

}  // namespace ravik::cli
