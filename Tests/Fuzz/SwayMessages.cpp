// Bytes from the window manager's socket, whole or in parts.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Platform/Linux/SwayIpc.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ravik::platform;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    SwayIpc::parseTree(text);
    SwayIpc::focusedBy(text);
    SwayIpc::succeeded(text);

    std::string bytes(text);
    bool broken = false;
    while (const auto message = SwayIpc::take(bytes, broken)) SwayIpc::parseTree(message->payload);

    bytes = SwayIpc::encode(SwayIpc::getTree, text);
    const auto whole = SwayIpc::take(bytes, broken = false);
    if (!whole || broken || whole->payload != text || !bytes.empty()) __builtin_trap();
    return 0;
}
