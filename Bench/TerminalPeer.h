#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ravik::bench {

/// CPU seconds, own and kernel's, that a full-screen program spends on one refresh of its own, at one refresh a
/// second on a screen of 50 lines by 160. It runs on a terminal of ours; a refresh shows as a burst of output after
/// silence, and the time is its CPU clock from one burst to a later one, so that its start does not count. Absent if
/// it cannot be started or does not refresh.
std::optional<double> secondsPerRefresh(const std::vector<std::string>& words, int refreshes);

/// CPU seconds of a program from its start to its end, output to nowhere. Absent if it cannot be started.
std::optional<double> secondsOfRun(const std::vector<std::string>& words);

}  // namespace ravik::bench
