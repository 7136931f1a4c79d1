#pragma once

#include <optional>
#include <string>

#include "Core/Diagnosis/Finding.h"
#include "Core/Screens/Controls.h"
#include "Core/Screens/ScreenInput.h"
#include "Core/Wording/AppIcons.h"

namespace ravik {

/// One finding as a row: whom it is about, what can be done. The same on the list of cards and beside the map.
struct DiagnosisCard {
    struct Button {
        std::string label;
        /// What pressing it does.
        std::string help;
        bool isEnabled = true;
        friend bool operator==(const Button&, const Button&) = default;
    };

    /// The finding's: stable from tick to tick.
    std::string id;
    IconRef icon;
    std::string name;
    /// Absent: no mark is shown.
    std::optional<VerdictFace> verdict;
    std::string sentence;
    /// "312 MB back", or what will be done where nothing is claimed to come back.
    std::string amount;
    /// `amount` is memory, not words.
    bool isMemory = false;
    /// Memory that comes back, else that the subject holds; empty where there is neither.
    std::string held;
    /// The same beside an `amount` that is words; empty where that tells it.
    std::string heldApart() const { return isMemory ? std::string() : held; }
    /// Absent: `instead` stands in its place.
    std::optional<Button> button;
    /// Why there is no button, or what to do; empty beside a button.
    std::string instead;
    /// Running the card opens the disk scan; `amount` says so and may be pressed. Not where there is no such screen.
    bool opensDisk = false;
    bool isSelected = false;
    /// The one card of a list that Tab comes to.
    bool isStop = false;
    /// Its action is under way.
    bool isEnding = false;
    /// The whole row, for those who hear the screen.
    std::string accessible;

    friend bool operator==(const DiagnosisCard&, const DiagnosisCard&) = default;
};

namespace DiagnosisCards {

DiagnosisCard card(const Finding& finding, const ScreenInput& input, bool isSelected, bool isEnding);

}  // namespace DiagnosisCards

}  // namespace ravik
