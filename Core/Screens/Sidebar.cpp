#include "Core/Screens/Sidebar.h"

#include <algorithm>

#include <fmt/format.h>

namespace ravik {

namespace {

std::optional<std::string> counted(std::ptrdiff_t count) {
    if (count <= 0) return std::nullopt;
    return fmt::format("{}", count);
}

std::optional<std::string> badge(Destination destination, const Snapshot& snapshot) {
    switch (destination) {
        case Destination::diagnosis: return counted(snapshot.sampled ? std::ssize(snapshot.findings) : 0);
        case Destination::sessions: return counted(std::ranges::count(snapshot.sessions, true, &AgentSession::alive));
        case Destination::autopilot: return "learning";
        case Destination::processes:
        case Destination::disk:
        case Destination::history: break;
    }
    return std::nullopt;
}

}  // namespace

std::string SidebarRow::spoken() const {
    if (!badge) return std::string(title);
    std::string_view noun;
    if (destination == Destination::diagnosis) noun = badge == "1" ? " finding" : " findings";
    if (destination == Destination::sessions) noun = " running";
    return fmt::format("{}, {}{}", title, *badge, noun);
}

Sidebar::Sidebar(const std::vector<Destination>& screens, Destination selected, bool settingsExist,
                 const Snapshot& snapshot, const Host& host)
    : hasSettings(settingsExist) {
    for (const Destination destination : screens) {
        rows.push_back({.destination = destination,
                        .symbol = symbol(destination),
                        .title = title(destination),
                        .badge = badge(destination, snapshot),
                        .isSelected = destination == selected,
                        .shortcut = fmt::format("{}{}", host.nouns().goChord, key(destination))});
    }
}

std::string GoMenu::readNow(const Host& host) { return fmt::format("Read {} Now", host.nouns().theMachine); }

}  // namespace ravik
