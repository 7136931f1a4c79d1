#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace ravik {

/// The screens of the main window, in the order of the sidebar.
enum class Destination { diagnosis, sessions, processes, disk, history, autopilot };

inline constexpr std::array allDestinations{Destination::diagnosis, Destination::sessions, Destination::processes,
                                            Destination::disk,      Destination::history,  Destination::autopilot};

/// "diagnosis": as the log, the environment and the terminal name it.
std::string_view word(Destination destination);
/// "Agent sessions": as the user reads it.
std::string_view title(Destination destination);
std::string_view symbol(Destination destination);
/// The digit of its shortcut: its place in the sidebar, from 1.
constexpr int key(Destination destination) { return static_cast<int>(destination) + 1; }
std::optional<Destination> parseDestination(std::string_view text);
/// The screen that another start of the app asks for: "open" with its word, or the word itself, as the actions of the
/// desktop entry are named. Absent for everything else.
std::optional<Destination> requestedDestination(std::string_view action, std::string_view parameter);

}  // namespace ravik
