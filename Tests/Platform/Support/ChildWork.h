#pragma once

#include <filesystem>
#include <functional>

#include <sys/stat.h>
#include <sys/types.h>

namespace ravik::platform {

/// Exit status of a child of the test that does `work`; -1 if a signal ended it. The child has this thread alone.
int inChild(const std::function<int()>& work);

/// A user whom the test is not.
inline constexpr uid_t somebodyElse = 65534;

/// Runs `work` as a user who has no privileges: as somebodyElse where the test itself has them.
int unprivileged(const std::function<int()>& work);

inline constexpr int notAllowed = 77;

/// Runs `work` as the first process of a pid namespace of its own, in which pids can be chosen, with a /proc that
/// shows it. notAllowed where this user may make none.
int amongOwnPids(const std::function<int()>& work);

/// A child with this very pid, which does `work` and then waits for signals; 0 if it cannot be had. Within a pid
/// namespace of the test's own only.
pid_t forkWithPid(pid_t pid, const std::function<void()>& work = {});

/// Gives the signals that end a crashing process back to the system, which a sanitizer answers with a report and an
/// exit. In the child that is to crash.
void crashAsUsual();

/// The permission bits; 0 if there is no such file.
unsigned modeOf(const std::filesystem::path& path);

/// How many descriptors this process has open.
int openDescriptors();

}  // namespace ravik::platform
