#include "Cli/OpenCommand.h"

#include <fmt/format.h>

#include "Core/Screens/Destination.h"
#include "Platform/DesktopApp.h"

namespace ravik::cli {

int runOpen(Context& context, const Arguments& arguments) {
    Activation asked;
    if (const auto destination = arguments.value("DESTINATION")) {
        if (!parseDestination(*destination)) {
            std::string expected;
            for (const Destination each : allDestinations) expected += fmt::format(", {}", word(each));
            return refuseWords(context, "open", "DESTINATION: expected one of " + expected.substr(2));
        }
        asked.action = "open";
        asked.parameter = *destination;
    }
    const auto refusal = context.platform().desktopApp.open(asked);
    if (!refusal) return done;
    context.err << *refusal << "\n";
    return couldNot;
}

}  // namespace ravik::cli
