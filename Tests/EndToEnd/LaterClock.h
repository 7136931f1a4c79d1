#pragma once

#include <cstdint>

#include "Tests/EndToEnd/Support.h"

namespace ravik::endtoend {

/// The time of day of the programs that are started from now on, which the test can put forward: what takes hours is
/// seen in seconds, by the very rules of the program.
class LaterClock {
public:
    explicit LaterClock(Home& home);
    ~LaterClock();
    LaterClock(const LaterClock&) = delete;
    LaterClock& operator=(const LaterClock&) = delete;

    void advance(std::int64_t seconds);

private:
    std::int64_t* m_ahead = nullptr;
};

}  // namespace ravik::endtoend
