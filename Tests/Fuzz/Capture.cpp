// A capture comes from a stranger: whatever it holds, reading and replaying it may refuse but must not fail.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <nlohmann/json.hpp>

#include "Core/Reading/Json.h"
#include "Core/Reading/Replay.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ravik;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const CaptureResult read = readCapture(text, size % 2 == 0 ? HostKind::mac : HostKind::linux);
    if (read.capture.has_value() != read.error.empty() || read.error.find('\n') != std::string::npos) __builtin_trap();
    if (read.capture) Json::text(replay(*read.capture));
    return 0;
}
