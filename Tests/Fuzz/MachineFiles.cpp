// Files about the machine as a whole. Containers and old kernels tell less than they might, or tell it otherwise.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Core/Base/Iso8601.h"
#include "Core/Disk/MountPoints.h"
#include "Core/Disk/VersionedName.h"
#include "Platform/Linux/Folders.h"
#include "Platform/Linux/MachineParse.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ravik;
    using namespace ravik::platform;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    meminfoBytes(text, "MemTotal");
    vmstatCounter(text, "pswpout");
    zramStoreBytes(text);
    reclaimableBytes(text);
    memoryLimit(text);
    for (const auto& device : zramSwaps(text)) {
        if (device.find('/') != std::string::npos) __builtin_trap();
    }
    if (const auto groups = memoryGroups(text)) {
        if (groups->folders.empty() || !groups->folders.back().empty()) __builtin_trap();
    }
    for (const auto& point : parseMountPoints(text)) {
        if (point.find('\n') != std::string::npos && text.find("\\012") == std::string_view::npos) __builtin_trap();
    }
    if (const auto folder = userFolder(text, "DESKTOP", "/home/someone")) {
        if (!folder->is_absolute()) __builtin_trap();
    }
    DiskScanner::VersionedName::parse(text);
    if (const auto time = Iso8601::parse(text)) {
        if (Iso8601::parse(Iso8601::format(*time)) != time) __builtin_trap();
    }
    return 0;
}
