// What the levers read: notes of an earlier run, and the kernel's files in which programs choose some of the bytes.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Platform/Linux/Autogroups.h"
#include "Platform/Linux/JobControl.h"
#include "Platform/Linux/LeverRecord.h"
#include "Platform/Linux/ThreadPriority.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ravik::platform;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    // What was understood once is understood again.
    if (const auto page = parsePage(text)) {
        const auto again = parsePage(writePage(*page));
        if (!again || again->records.size() != page->records.size()) __builtin_trap();
    }
    parseJobStat(text);
    parseAutogroup(text);
    parseNiceLimit(text);
    return 0;
}
