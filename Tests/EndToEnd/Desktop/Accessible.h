#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Base/Pids.h"
#include "Tests/EndToEnd/Desktop/Bus.h"
#include "Tests/EndToEnd/Desktop/Hands.h"

namespace ravik::endtoend {

/// One thing of a window as those hear it who do not see it, read at one moment. What is hidden is left out.
struct Accessible {
    /// In the words of the accessibility bus: "push button", "label", "frame".
    std::string role;
    std::string name;
    std::string description;
    Area area;
    /// A window that has the keyboard.
    bool active = false;
    bool enabled = false;
    bool focusable = false;
    bool focused = false;
    bool visible = false;
    bool checked = false;
    bool selected = false;
    std::vector<Accessible> children;

    /// The first of that role and name among this and all below; null if there is none.
    const Accessible* find(std::string_view role, std::string_view name) const;
    /// The first whose name begins like that.
    const Accessible* findBeginning(std::string_view role, std::string_view beginning) const;
    /// The one that has the keyboard; null if there is none.
    const Accessible* focus() const;
    void visit(const std::function<void(const Accessible&)>& visitor) const;
    /// One line for each, indented by two blanks a level: role, name in quotes, and what is unusual about it.
    std::string text(int depth = 0) const;
};

/// The accessibility bus of a session.
class AccessibilityBus {
public:
    explicit AccessibilityBus(const Bus& session);

    /// The windows of that process; without children while it has none, or is not on the bus.
    Accessible windowsOf(Pid pid) const;

private:
    struct Place {
        std::string owner;
        std::string path;
    };
    std::vector<Place> children(const Place& place) const;
    std::string property(const Place& place, const char* name) const;
    Pid pidOf(const std::string& owner) const;
    Accessible read(const Place& place) const;

    Bus m_bus;
};

}  // namespace ravik::endtoend
