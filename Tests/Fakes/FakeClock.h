#pragma once

#include <atomic>

#include "Platform/Platform.h"

namespace ravik::fakes {

/// A clock that stands until it is moved.
class FakeClock : public Clock {
public:
    Time now() const override { return time; }
    double monotonic() const override { return time; }
    void advance(double seconds) { time += seconds; }

    /// Read by the log's own thread too.
    std::atomic<Time> time = 1'760'000'000;
};

}  // namespace ravik::fakes
