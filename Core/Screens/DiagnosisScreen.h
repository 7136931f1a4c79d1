#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Screens/Controls.h"
#include "Core/Screens/DiagnosisCard.h"
#include "Core/Screens/DiagnosisSections.h"
#include "Core/Screens/DiagnosisState.h"
#include "Core/Screens/MemoryBarFace.h"
#include "Core/Screens/ScreenInput.h"

namespace ravik {

/// All that the Diagnosis screen shows, by value: two that are equal look alike.
struct DiagnosisScreen {
    /// Apps that its pictures name.
    static constexpr std::size_t topApps = 8;

    enum class State { waiting, calm, findings };

    /// The first reading is not there yet.
    struct Waiting {
        std::string title;
        std::string line;
        friend bool operator==(const Waiting&, const Waiting&) = default;
    };

    struct Calm {
        std::string symbol;
        std::string title;
        std::string line;
        MemoryBarFace bar;
        std::vector<LegendItem> legend;
        friend bool operator==(const Calm&, const Calm&) = default;
    };

    struct ModePicker {
        DiagnosisState::Mode selected = DiagnosisState::Mode::cards;
        std::string cardsLabel;
        std::string mapLabel;
        std::string help;
        friend bool operator==(const ModePicker&, const ModePicker&) = default;
    };

    /// Two bars on one scale.
    struct BeforeAfter {
        std::string nowHeading;
        std::string nowHead;
        MemoryBarFace now;
        std::string afterHeading;
        std::string afterHead;
        MemoryBarFace after;
        std::vector<LegendItem> legend;
        friend bool operator==(const BeforeAfter&, const BeforeAfter&) = default;
    };

    struct Section {
        DiagnosisSection::Kind kind = DiagnosisSection::Kind::free;
        std::string heading;
        std::vector<DiagnosisCard> cards;
        friend bool operator==(const Section&, const Section&) = default;
    };

    /// What came of an action.
    struct Resolved {
        /// Its own, not the finding's.
        std::string id;
        IconRef icon;
        std::string name;
        std::string line;
        /// In the caution colour where the action has not fully worked.
        ResolvedFace face;
        std::string accessible;
        friend bool operator==(const Resolved&, const Resolved&) = default;
    };

    State state = State::waiting;
    /// Filled by `state`; those of the other states are empty.
    Waiting waiting;
    Calm calm;
    HeroFace hero;
    FreeButtonFace free;
    ModePicker picker;
    BeforeAfter beforeAfter;
    /// Those without a card are left out. Empty while the map is shown.
    std::vector<Section> sections;
    /// Below the sections, first action first.
    std::vector<Resolved> resolved;

    DiagnosisScreen() = default;
    /// `alertsOff`: the user has switched the program's notifications off. `lastFix`: the line of the last fix.
    DiagnosisScreen(const ScreenInput& input, const MemoryPicture& picture, const DiagnosisState& memory,
                    bool alertsOff, const std::optional<std::string>& lastFix);

    /// Ids of the cards from top to bottom.
    DiagnosisOrder::Ids cardIds() const;

    /// The picture that this screen is made from.
    static MemoryPicture picture(const ScreenInput& input);
    static Resolved resolve(const DiagnosisState::Done& done);

    friend bool operator==(const DiagnosisScreen&, const DiagnosisScreen&) = default;
};

/// "Cards", "Map": as it is stored and as the user reads it.
std::string_view word(DiagnosisState::Mode mode);
std::optional<DiagnosisState::Mode> parseDiagnosisMode(std::string_view text);

}  // namespace ravik
