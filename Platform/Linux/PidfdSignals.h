#pragma once

#include <atomic>

#include "Platform/Platform.h"

namespace ravik::platform {

/// Signals by process descriptor: the process that was checked is the one signalled and the one waited for, whatever
/// becomes of its pid. On a kernel without such descriptors the start stamp is compared again before each signal,
/// which leaves a moment between the look and the signal. A zombie has gone. Any thread.
class PidfdSignals : public Signals {
public:
    enum class Use { wherePossible, never };

    explicit PidfdSignals(Use descriptors = Use::wherePossible) : m_descriptors(descriptors == Use::wherePossible) {}

    std::optional<VerifiedProcess> verify(const Proc& proc) const override;
    bool alive(const VerifiedProcess& process) const override;
    bool stopped(const VerifiedProcess& process) const override;
    bool send(const VerifiedProcess& process, Signal signal) const override;
    void waitForExit(std::span<const VerifiedProcess> processes, double seconds) const override;
    void sleep(double seconds) const override;

private:
    mutable std::atomic<bool> m_descriptors;  // false for good once the kernel has said that it has none
};

}  // namespace ravik::platform
