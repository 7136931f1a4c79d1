#include "Core/Watch/Composition.h"

#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/Rx.h"

namespace ravik {

CoreRules coreRules(const Host& host) {
    CoreRules rules;
    rules.groupOf = [&host](const Proc& proc) { return Classifier::group(proc, host); };
    rules.isToolHelper = [](std::string_view command) {
        return Rx::agentLeftover().matches(command) || Rx::automationProfile().matches(command);
    };
    return rules;
}

Host hostOf(const Computer& computer) {
    Host host;
    host.kind = computer.isMac() ? HostKind::mac : HostKind::linux;
    host.uid = computer.uid();
    host.pid = computer.pid();
    return host;
}

Log::Options logOptions(Computer& computer, std::optional<Time> (*createdAt)(const std::filesystem::path&)) {
    const Platform& platform = computer.platform();
    return {.folder = platform.folders.log,
            .formerFolder = platform.folders.formerLog,
            .now = [&clock = platform.clock] { return clock.now(); },
            .session = Log::newSession(),
            .enabled = !computer.environment("XCTestConfigurationFilePath"),
            .createdAt = createdAt};
}

}  // namespace ravik
