#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "Core/Base/Time.h"
#include "Core/Diagnosis/Finding.h"

namespace ravik {

/// Decides for each cause whether an alert is due: it must have lasted, and must not have been told lately. A cause is
/// a finding's id, or "breach" for any limit that is passed. Memory of this run only.
struct AlertPolicy {
    struct Causes {
        std::set<std::string> critical;
        std::set<std::string> urgent;
        friend bool operator==(const Causes&, const Causes&) = default;
    };

    // Seconds.
    double settle = 600;
    double urgentSettle = 60;
    double urgentCooldown = 1800;
    double cooldown = 86400;
    std::map<std::string, Time> firstSeen;
    std::map<std::string, Time> lastAlerted;

    /// The critical findings, and those of them that are urgent. A holder names the culprit, so that the general
    /// complaint about swapping is left out beside it.
    static Causes causes(const std::vector<Finding>& findings);
    /// The causes due now. One that is missing for a single tick settles anew when it returns.
    std::set<std::string> due(const Causes& causes, bool breaching, Time now);
    void record(const std::set<std::string>& told, Time now);
};

}  // namespace ravik
