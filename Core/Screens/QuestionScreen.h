#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Ending/Confirmation.h"
#include "Core/Host/Host.h"
#include "Core/Screens/Controls.h"

namespace ravik {

/// A question as the user sees it: a plain record, compared by value. The bright button and the Return key mean no;
/// going ahead takes a click or a chord.
struct QuestionScreen {
    static constexpr std::string_view cancel = "Cancel";

    struct Row {
        IconRef icon;
        std::string name;
        std::string line;
        /// Empty where `mark` stands in its place.
        std::string amount;
        std::optional<VerdictFace> mark;
        friend bool operator==(const Row&, const Row&) = default;
    };
    struct Section {
        std::string heading;
        std::vector<Row> rows;
        /// "1 more"; empty where all rows are shown.
        std::string more;
        friend bool operator==(const Section&, const Section&) = default;
    };

    std::string title;
    std::string message;
    /// The button that goes ahead.
    std::string verb;
    /// How the chord that goes ahead is written: "Ctrl+Backspace".
    std::string chord;
    /// Those that have rows: what will end, then what stays running.
    std::vector<Section> sections;
    std::string note;
    /// Title, message and what the lists name, for those who hear the screen.
    std::string summary;

    QuestionScreen() = default;
    QuestionScreen(const Confirmation& question, const Host& host);

    friend bool operator==(const QuestionScreen&, const QuestionScreen&) = default;
};

/// What the keys mean while a question stands, whichever of its buttons has the focus.
namespace QuestionKeys {

enum class Key { enter, escape, backspace, forwardDelete, other };

struct Press {
    Key key = Key::other;
    /// The modifier of the system's shortcuts is down: Ctrl, or Command on a Mac.
    bool withCommand = false;
    /// Any other modifier is down.
    bool withOthers = false;
    /// The key was already down: its holder may still be typing in another window.
    bool isRepeat = false;
};

/// The answer that a key press gives; absent where it is no answer.
constexpr std::optional<bool> answer(const Press& press) {
    switch (press.key) {
        case Key::enter:
        case Key::escape: return false;
        case Key::backspace:
            if (press.withCommand && !press.withOthers && !press.isRepeat) return true;
            return std::nullopt;
        case Key::forwardDelete:
        case Key::other: break;
    }
    return std::nullopt;
}

}  // namespace QuestionKeys

}  // namespace ravik
