#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

#include "Core/Autopilot/Decision.h"
#include "Core/Base/Time.h"

namespace ravik {

class Defaults;

/// The user's standing yes to whole rules. Read from the settings at each use. Main loop.
class Approvals {
public:
    static constexpr std::string_view key = "autopilotApproved";

    explicit Approvals(Defaults& defaults) : m_defaults(defaults) {}

    /// Words that name no action are passed over.
    std::set<Decision::Action> actions() const;
    /// False if it could not be stored.
    bool setActions(const std::set<Decision::Action>& actions);

private:
    Defaults& m_defaults;
};

/// Which suggestions the user does not want to see for a day. Read from the settings at each use. Main loop.
class Suggestions {
public:
    static constexpr std::string_view key = "dismissedSuggestions";
    static constexpr double dismissalSeconds = 86400.0;

    explicit Suggestions(Defaults& defaults) : m_defaults(defaults) {}

    /// When each target was dismissed. Old entries stay.
    std::map<std::string, Time> dismissed() const;
    bool isDismissed(const std::string& target, Time now) const;
    bool dismiss(const std::string& target, Time now);

private:
    Defaults& m_defaults;
};

}  // namespace ravik
