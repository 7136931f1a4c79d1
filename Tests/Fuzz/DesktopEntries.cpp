// Every package and every user writes desktop entries.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Platform/Linux/DesktopEntry.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ravik::platform;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto entry = parseDesktopEntry(text, "id")) {
        if (entry->name.empty() && !entry->isHidden) __builtin_trap();
        launchTarget(entry->exec);
        entry->isTypedIn();
    }
    splitExec(text);
    const LaunchTarget target = launchTarget(text);
    if (target.program.empty() && !target.script.empty()) __builtin_trap();
    return 0;
}
