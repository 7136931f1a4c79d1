#pragma once

#include <functional>
#include <string>

#include "Core/Base/Pids.h"

namespace ravik::endtoend {

/// Runs `work` in a pid namespace of its own, with a /proc that shows it, so that nothing but what the tests start
/// can be read or ended there. Its first process only reaps, as the first process of a computer does, and whatever
/// still runs goes with it. The exit status of `work`; 1, with a sentence on standard error, where no namespace can
/// be had. Called once, before there are other threads.
int isolated(const std::function<int()>& work);

/// True within isolated().
bool isIsolated();

/// Every process of the namespace but its first and this one: "12 sleep 1000, 14 sh". Empty if there is none.
std::string othersRunning();

/// Kills those, within isolated() only.
void endOthers();

}  // namespace ravik::endtoend
