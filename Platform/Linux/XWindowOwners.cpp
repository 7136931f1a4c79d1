#include "Platform/Linux/XWindowOwners.h"

#include <cstdlib>

#include "Platform/Linux/XConnection.h"

namespace ravik::platform {

PidSet xWindowOwners(const std::string& display) {
    if (display.empty() && !std::getenv("DISPLAY")) return {};
    const auto connection = XConnection::open(display);
    return connection ? connection->windowOwners() : PidSet{};
}

}  // namespace ravik::platform
