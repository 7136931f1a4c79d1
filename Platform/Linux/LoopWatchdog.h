#pragma once

#include <functional>
#include <memory>

namespace ravik::platform {

/// Sees when GLib's default main context, on which Qt runs as well, does not turn for a while. It sleeps in the kernel
/// until that has happened: a loop that waits, or that turns in time, never wakes it and pays two system calls a turn.
/// A time in which the whole process stood still (stopped, or the machine too busy to run it) is nobody's hang. Made
/// and destroyed on the loop's thread; one at a time.
class LoopWatchdog {
public:
    struct Hang {
        /// 1 for the first since the start.
        int number = 0;
        /// How long it has lasted.
        double seconds = 0;
        /// False while it lasts.
        bool over = false;
    };
    /// Called on the watchdog's own thread: when a hang has lasted `limit` seconds, at each doubling, and at its end.
    using Observer = std::function<void(const Hang&)>;

    LoopWatchdog(double limit, Observer observer);
    ~LoopWatchdog();
    LoopWatchdog(const LoopWatchdog&) = delete;
    LoopWatchdog& operator=(const LoopWatchdog&) = delete;

private:
    struct Guard;
    std::unique_ptr<Guard> m_guard;
};

}  // namespace ravik::platform
