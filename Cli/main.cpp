#include <clocale>
#include <iostream>

#include "Cli/Parser.h"
#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/Rx.h"
#include "Platform/Computer.h"

int main(int argc, char** argv) {
    using namespace ravik;
    std::ios::sync_with_stdio(false);

    Host host;
    CoreRules rules;
    rules.groupOf = [&host](const Proc& proc) { return Classifier::group(proc, host); };
    rules.isToolHelper = [](std::string_view command) {
        return Rx::agentLeftover().matches(command) || Rx::automationProfile().matches(command);
    };
    const auto computer = makeComputer(std::move(rules), "ravik watch");
    host.kind = computer->isMac() ? HostKind::mac : HostKind::linux;
    host.uid = computer->uid();
    host.pid = computer->pid();

    const Platform& platform = computer->platform();
    const Clock& clock = platform.clock;
    Log log({.folder = platform.folders.log,
             .formerFolder = platform.folders.formerLog,
             .now = [&clock] { return clock.now(); },
             .session = Log::newSession(),
             .enabled = !computer->environment("XCTestConfigurationFilePath"),
             .createdAt = creationDate});
    cli::Context context{*computer, log, host, std::cout, std::cerr};
    context.colour = computer->terminal().isOutput() && !computer->environment("NO_COLOR");
    return cli::dispatch(context, {argv + 1, argv + argc});
}
