#pragma once

#include <string_view>

/// How a process passes the name of its application on. Pure, any thread.
namespace ravik::platform {

/// True for a part that an application splits off, whose name is that of the process it serves: a renderer, a
/// zygote, a crash handler.
bool isHelperProcess(std::string_view executable, std::string_view command);

/// True for a program that starts others at its user's wish: a shell, a terminal, a session manager. `name` is the
/// base name of its executable, or its process name.
bool startsForeigners(std::string_view name);

}  // namespace ravik::platform
