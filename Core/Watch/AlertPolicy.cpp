#include "Core/Watch/AlertPolicy.h"

namespace ravik {

AlertPolicy::Causes AlertPolicy::causes(const std::vector<Finding>& findings) {
    Causes causes;
    for (const Finding& finding : findings) {
        if (finding.severity != Finding::Severity::critical) continue;
        causes.critical.insert(finding.id);
        if (finding.id.starts_with("holder:")) causes.urgent.insert(finding.id);
    }
    if (!causes.urgent.empty()) causes.critical.erase("thrash");
    return causes;
}

std::set<std::string> AlertPolicy::due(const Causes& causes, bool breaching, Time now) {
    std::set<std::string> current = causes.critical;
    if (breaching) current.insert("breach");
    std::erase_if(firstSeen, [&](const auto& entry) { return !current.contains(entry.first); });

    std::set<std::string> ripe;
    for (const std::string& cause : current) {
        const Time seen = firstSeen.try_emplace(cause, now).first->second;
        const auto told = lastAlerted.find(cause);
        const Time last = told == lastAlerted.end() ? distantPast : told->second;
        const bool urgent = causes.urgent.contains(cause);
        if (now - seen >= (urgent ? urgentSettle : settle) && now - last >= (urgent ? urgentCooldown : cooldown)) {
            ripe.insert(cause);
        }
    }
    return ripe;
}

void AlertPolicy::record(const std::set<std::string>& told, Time now) {
    for (const std::string& cause : told) lastAlerted[cause] = now;
}

}  // namespace ravik
