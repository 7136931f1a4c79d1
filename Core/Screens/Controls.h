#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Core/Base/Time.h"
#include "Core/Diagnosis/Finding.h"
#include "Core/Host/Host.h"

/// What the controls that more than one screen uses say and whether they can be pressed: plain records, compared by
/// value. Any thread.
namespace ravik {

/// Names of the colour tokens that a record can ask for.
namespace Colour {
inline constexpr std::string_view safe = "safe";
inline constexpr std::string_view caution = "caution";
inline constexpr std::string_view never = "never";
inline constexpr std::string_view onSignal = "onSignal";
/// The secondary colour of text.
inline constexpr std::string_view secondary = "secondary";
}  // namespace Colour

/// A figure and its unit.
struct ReadoutFace {
    enum class State { live, resolved, pending };

    /// "—" while pending, whatever was given.
    std::string value;
    /// Empty while pending.
    std::string unit;
    State state = State::pending;

    /// Pending.
    ReadoutFace();
    ReadoutFace(std::string figure, std::string unitOfIt, State of);
    /// An amount of memory: "4.6", "GB".
    static ReadoutFace amount(std::uint64_t bytes, State state = State::live);

    /// "4.6 GB", for those who hear the screen.
    std::string spoken() const;

    friend bool operator==(const ReadoutFace&, const ReadoutFace&) = default;
};

/// The top of a screen: a readout of 40 points, a label beside it, a line under it.
struct HeroFace {
    ReadoutFace readout;
    std::string label;
    std::optional<std::string> line;

    friend bool operator==(const HeroFace&, const HeroFace&) = default;
};

/// A verdict as a small shape and a word, so that it never rests on colour alone.
struct VerdictFace {
    enum class Shape { dot, ring, square, dashedRing };

    Shape shape = Shape::dot;
    /// One of Colour.
    std::string_view colour = Colour::safe;
    std::string word;

    VerdictFace() = default;
    /// `word` replaces the tone's own. `onAmber`: on a background of increased prominence.
    explicit VerdictFace(Tone tone, std::optional<std::string> instead = {}, bool onAmber = false);

    /// "Verdict: asks first": the whole mark, for those who hear the screen.
    std::string spoken() const;

    friend bool operator==(const VerdictFace&, const VerdictFace&) = default;
};

/// The one primary button.
struct FreeButtonFace {
    static constexpr std::string_view help = "Ends only what is safe to end, after you confirm";

    std::string label;
    bool isEnabled = false;
    /// A spinner stands before the label.
    bool isBusy = false;

    FreeButtonFace() = default;
    /// `running`: what stands in the button while it works.
    explicit FreeButtonFace(std::uint64_t bytes, const std::optional<std::string>& running = {});

    friend bool operator==(const FreeButtonFace&, const FreeButtonFace&) = default;
};

/// How the outcome of a fix is marked.
struct ResolvedFace {
    std::string_view symbol;
    /// One of Colour.
    std::string_view colour;

    ResolvedFace() = default;
    /// `line` is what Actions said of it.
    explicit ResolvedFace(std::string_view line);

    friend bool operator==(const ResolvedFace&, const ResolvedFace&) = default;
};

/// The small round button that opens a help sheet.
namespace InfoButton {
inline constexpr std::string_view symbol = "info.circle";
inline constexpr std::string_view help = "More about this";
inline constexpr std::string_view spoken = "More information";
}  // namespace InfoButton

/// What is said where a program was to be left running and that could not be stored.
inline constexpr std::string_view keepFailure = "Ravik could not store that, so it is not on your Keep list.";

/// While the first reading is not there yet.
namespace Pending {
/// "Reading your Mac…"
std::string title(const Host& host);
inline constexpr std::string_view line = "This takes a few seconds.";
}  // namespace Pending

/// A text that time changes, and the moment from which it reads otherwise.
struct LiveText {
    std::string text;
    Time until = 0;

    friend bool operator==(const LiveText&, const LiveText&) = default;
};

/// How long ago something was, cut: "4 s", "12 min", "3 h", "2 days". What lies ahead counts as now.
LiveText ago(Time then, Time now);

/// How long until `end`, rounded up to whole minutes: "7 minutes left", "1 minute left" to the end.
LiveText minutesLeft(Time end, Time now);

}  // namespace ravik
