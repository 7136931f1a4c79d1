#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a process calls itself. Pure. Any thread.
namespace ravik::platform {

/// The arguments in /proc/PID/cmdline, each ended by a NUL, empty ones included. One that is not ended is left out.
/// The views point into `area`.
std::vector<std::string_view> splitArguments(std::string_view area);

/// The arguments joined by one blank, repaired to UTF-8, without the NULs and blanks that a program leaves behind
/// which wrote a title over them. Absent if there is no argument, or nothing remains.
std::optional<std::string> joinArguments(const std::vector<std::string_view>& arguments);

/// The part behind the last "/".
std::string_view baseName(std::string_view path);

/// The executable's path without the mark of a file that was replaced or removed.
std::string_view withoutDeleted(std::string_view path);

/// True if this is the program that the kernel names so, which keeps 15 bytes of it.
bool isNamed(std::string_view candidate, std::string_view comm);

/// The short name of a process: the whole word behind the kernel's 15 bytes, where the arguments or the executable
/// (empty: not known) still show it.
std::string processName(std::string_view comm, const std::vector<std::string_view>& arguments,
                        std::string_view executable);

/// True if processName() can tell from these alone, so that the executable need not be looked up.
bool namedByArguments(std::string_view comm, const std::vector<std::string_view>& arguments);

}  // namespace ravik::platform
