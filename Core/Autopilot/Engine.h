#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "Core/Autopilot/Decision.h"
#include "Core/Diagnosis/Diagnoser.h"
#include "Core/Host/Host.h"
#include "Core/Watch/Snapshot.h"

namespace ravik {

/// What would be worth doing if the machine were left to itself. Touches nothing; any thread.
struct Engine {
    /// What the program has seen since its start. In memory only: until it has itself watched for idleMinutes, no
    /// group counts as idle.
    struct History {
        std::unordered_map<std::string, Time> lastBusy;     // by group: above 1 percent CPU
        std::unordered_map<std::string, Time> lastFocused;  // by group: in the foreground
        Time observedSince = 0;
        friend bool operator==(const History&, const History&) = default;
    };
    struct Conditions {
        bool underPressure = false;
        bool loaded = false;
        friend bool operator==(const Conditions&, const Conditions&) = default;
    };

    double idleMinutes = 30.0;
    std::uint64_t minPauseBytes = 200ull << 20;
    double demoteCPU = 25.0;
    double leftoverHours = 24.0;
    /// Command lines that the user asked to keep.
    KeepSet keep;

    static Conditions conditions(const Snapshot& snapshot);

    /// At most one decision a group and one for what ended sessions left; largest gain first, ties by target in
    /// descending order. `clock` is the time that the age of leftovers is measured by.
    std::vector<Decision> decide(const Snapshot& snapshot, const History& history,
                                 const std::optional<std::string>& foreground, const Host& host, Time now,
                                 Time clock) const;

private:
    std::optional<Decision> judge(const AppGroup& group, const Conditions& conditions, const History& history,
                                  const Host& host, Time now) const;
    std::optional<Decision> leftovers(const Snapshot& snapshot, const Host& host, Time clock) const;
};

}  // namespace ravik
