#pragma once

#include <cstdint>
#include <string_view>

/// What the control group of a process says about who runs it. Pure; results are views into the argument. Any
/// thread.
namespace ravik::platform::ControlGroup {

/// The path in the text of /proc/PID/cgroup: of the unified tree, else of systemd's own, else the longest of all.
/// "/" where none says anything; empty for a text that is none.
std::string_view path(std::string_view text);

/// The path up to and with its deepest unit (.service, .scope or .slice); empty if there is none.
std::string_view unitPath(std::string_view path);
/// The name of that unit.
std::string_view unit(std::string_view path);

/// The path up to and with the container in which it lies; empty if it lies in none.
std::string_view containerPath(std::string_view path);

/// True for the group of a user's own service manager.
bool isUserManager(std::string_view path, std::uint32_t uid);

/// True for a group that belongs to a service, the manager itself or the desktop's own session. A unit of an
/// application is none, whatever its suffix.
bool isService(std::string_view path);

/// True for the name of a unit in which a desktop puts one application.
bool isApplication(std::string_view unit);

/// True if a container or a service has the process, and that is not the one in which the program itself lies.
bool isManaged(std::string_view path, std::string_view ownPath);

}  // namespace ravik::platform::ControlGroup
