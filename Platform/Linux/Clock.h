#pragma once

#include "Platform/Platform.h"

namespace ravik::platform {

/// The computer's own clocks.
class SystemClock : public Clock {
public:
    Time now() const override;
    double monotonic() const override;
};

}  // namespace ravik::platform
