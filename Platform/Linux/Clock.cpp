#include "Platform/Linux/Clock.h"

#include <ctime>

namespace ravik::platform {

namespace {

double read(clockid_t clock) {
    timespec at{};
    clock_gettime(clock, &at);
    return static_cast<double>(at.tv_sec) + static_cast<double>(at.tv_nsec) * 1e-9;
}

}  // namespace

Time SystemClock::now() const { return read(CLOCK_REALTIME); }

double SystemClock::monotonic() const { return read(CLOCK_MONOTONIC); }

}  // namespace ravik::platform
