#include "Core/Screens/LiveLeftoversRule.h"

#include <nlohmann/json.hpp>

namespace ravik::LiveLeftoversRule {

void setOn(Thresholds& limits, bool on, Log& log) {
    limits.autoEndLeftovers = on;
    log.event("autopilotRule", {{"on", on}});
}

bool setHours(Thresholds& limits, double hours) {
    const bool isWithin = lowestHours <= hours && hours <= highestHours;  // not for a NaN
    if (!isWithin) return false;
    limits.autoLeftoverMinHours = hours;
    return true;
}

}  // namespace ravik::LiveLeftoversRule
