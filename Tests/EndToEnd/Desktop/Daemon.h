#pragma once

#include <string>

#include "Core/Base/Pids.h"
#include "Tests/EndToEnd/Desktop/Session.h"

namespace ravik::endtoend {

/// Starts dunst, which shows notifications in the lower right corner until somebody answers them: a middle click is
/// its default action, a right click opens its menu, in which the test's hand takes the first entry that begins with
/// `chosen`. Returns the pid once it can be asked.
Pid startNotifications(const Home& home, const Bus& bus, const std::string& chosen);

/// Where notifications stand.
std::vector<Area> notifications(Hands& hands);

}  // namespace ravik::endtoend
