// What the kernel tells of a process holds names, titles and paths that the process chose itself.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Platform/Linux/AppNames.h"
#include "Platform/Linux/AppRules.h"
#include "Platform/Linux/ApplicationUnit.h"
#include "Platform/Linux/BootTime.h"
#include "Platform/Linux/CommandLine.h"
#include "Platform/Linux/ControlGroup.h"
#include "Platform/Linux/Interpreters.h"
#include "Platform/Linux/LockFile.h"
#include "Platform/Linux/ProcParse.h"
#include "Platform/Linux/ServiceRules.h"
#include "Platform/Linux/Utf8.h"

namespace {

using namespace ravik::platform;

void statistics(std::string_view text) {
    const auto stat = parseProcStat(text);
    const auto stamp = parseStartStamp(text);
    // The process that is listed must be the one that is signalled.
    if (stat && (!stamp || stamp->ticks != stat->startTicks || stamp->state != stat->state)) __builtin_trap();
    sessionOf(text);
    parseBootTime(text);
    parseProcStatm(text);
    parseVmSwap(text);
    parseSwapUsed(text);
    parseLockHolder(text);
}

void names(std::string_view text) {
    const std::string_view comm = text.substr(0, std::min<std::size_t>(text.size(), 15));
    const auto arguments = splitArguments(text);
    if (const auto command = joinArguments(arguments)) {
        if (command->empty() || repairedUtf8(*command) != *command) __builtin_trap();
        isHelperProcess(command->substr(0, command->find(' ')), *command);
    }
    processName(comm, arguments, withoutDeleted(text));
    if (namedByArguments(comm, arguments) && processName(comm, arguments, "/x") != processName(comm, arguments, "/y")) {
        __builtin_trap();
    }
    scriptOf(arguments);
    scriptPathOf(arguments);
}

void group(std::string_view text) {
    namespace ControlGroup = ravik::platform::ControlGroup;
    const std::string_view path = ControlGroup::path(text);
    if (!path.empty() && path.front() != '/') __builtin_trap();
    for (const std::string_view each : {path, text}) {
        if (!each.starts_with(ControlGroup::unitPath(each))) __builtin_trap();
        if (!each.starts_with(ControlGroup::containerPath(each))) __builtin_trap();
        if (ControlGroup::isManaged(each, each)) __builtin_trap();
        ControlGroup::isUserManager(each, 1000);
        ControlGroup::isService(each);
        for (const auto& id : applicationIds(ControlGroup::unit(each))) {
            if (id.empty()) __builtin_trap();
        }
    }
    unescapeUnit(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    statistics(text);
    names(text);
    group(text);
    return 0;
}
