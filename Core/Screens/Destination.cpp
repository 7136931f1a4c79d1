#include "Core/Screens/Destination.h"

namespace ravik {

namespace {

struct Entry {
    std::string_view word;
    std::string_view title;
    std::string_view symbol;
};

constexpr std::array<Entry, allDestinations.size()> entries{{
    {"diagnosis", "Diagnosis", "stethoscope"},
    {"sessions", "Agent sessions", "person.2"},
    {"processes", "Processes", "list.bullet.rectangle"},
    {"disk", "Disk", "internaldrive"},
    {"history", "History", "clock"},
    {"autopilot", "Autopilot", "airplane"},
}};

const Entry& entry(Destination destination) { return entries[static_cast<std::size_t>(destination)]; }

}  // namespace

std::string_view word(Destination destination) { return entry(destination).word; }
std::string_view title(Destination destination) { return entry(destination).title; }
std::string_view symbol(Destination destination) { return entry(destination).symbol; }

std::optional<Destination> parseDestination(std::string_view text) {
    for (const Destination destination : allDestinations) {
        if (word(destination) == text) return destination;
    }
    return std::nullopt;
}

std::optional<Destination> requestedDestination(std::string_view action, std::string_view parameter) {
    return parseDestination(action == "open" ? parameter : action);
}

}  // namespace ravik
