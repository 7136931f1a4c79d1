#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Autopilot/LiveLedger.h"
#include "Core/Host/Host.h"
#include "Core/Screens/Controls.h"
#include "Core/Watch/Snapshot.h"
#include "Core/Wording/MemoryPicture.h"

namespace ravik {

/// What one opening of the panel remembers of its own.
struct PanelMemory {
    /// A finding fixed while the panel was open.
    struct Done {
        Finding finding;
        /// What Actions said of it.
        std::string line;
        /// As it stood before the fix, when the machine still knew it.
        IconRef icon;
    };

    /// What the last Free said.
    std::optional<std::string> result;
    /// What stands in the Free button while Free runs.
    std::optional<std::string> running;
    /// What stands in the feedback button once it was pressed.
    std::optional<std::string> feedback;
    bool isBuildingFeedback = false;
    std::vector<Done> done;
    std::optional<std::string> week;
    /// Ids of findings whose own fix is under way.
    std::vector<std::string> underWay;
    /// Ids of findings whose rows keep these places while the user points at the list; who comes takes the place of who
    /// goes.
    std::vector<std::string> held;
    /// The finding of these whose row the pointer is on: it does not go while there is something to show of it.
    std::string pointed;
    /// Ids of findings that were to be kept running, which could not be stored.
    std::vector<std::string> unkept;
};

/// What the panel shows of the machine. The references must outlive it.
struct PanelSource {
    const Snapshot& snapshot;
    /// Seconds between two readings.
    double interval = 5;
    std::uint64_t ramBytes = 0;
    const std::vector<Decision>& suggestions;
    const std::vector<LiveAction>& live;
    /// Count of Autopilot rules that are on.
    std::size_t rulesOn = 0;
    const Host& host;
    Time now = 0;
};

/// All that the menu bar panel shows, from top to bottom. A plain record, compared by value.
struct PanelScreen {
    /// The three states of the middle part.
    enum class Middle { pending, calm, findings };

    static constexpr std::size_t topApps = 6;
    static constexpr std::string_view word = "Ravik";
    static constexpr std::string_view calmSymbol = "checkmark.circle.fill";
    static constexpr std::string_view heroCaption = "you can free";
    /// What the default key presses while the panel has the keyboard is the Free button.
    static constexpr std::string_view freeKey = "Return";
    static constexpr std::string_view keepLabel = "Keep This One Running";
    static constexpr std::string_view keepSymbol = "pin";
    static constexpr std::string_view suggestionsTitle = "Autopilot would…";
    static constexpr std::string_view acceptLabel = "Do it";
    static constexpr std::string_view dismissLabel = "Not this";
    static constexpr std::string_view autopilotSymbol = "airplane";
    static constexpr std::string_view undoLabel = "Undo";
    static constexpr std::string_view weekSymbol = "checkmark.seal";
    static constexpr std::string_view openLabel = "Open Ravik";
    static constexpr std::string_view quitLabel = "Quit Ravik";
    static constexpr std::string_view feedbackLabel = "Send feedback…";
    static constexpr std::string_view buildingFeedback = "Building the bundle…";

    struct Header {
        /// "checked 4 s ago"; absent before the first reading.
        std::optional<std::string> checked;
        std::string tooltip;
        friend bool operator==(const Header&, const Header&) = default;
    };

    /// One finding, or what came of it.
    struct Row {
        /// The finding's.
        std::string id;
        /// Present once it was fixed; then `sentence` says how, and only the icon stands beside it.
        std::optional<ResolvedFace> resolved;
        IconRef icon;
        std::string name;
        std::string sentence;
        std::string amount;
        VerdictFace verdict;
        /// Absent where there is nothing to press.
        std::optional<std::string> button;
        /// What the button will do.
        std::string help;
        bool isEnabled = false;
        /// The second button, keepLabel.
        bool hasKeep = false;
        /// What came of pressing it, where it has failed; else empty.
        std::string keepNote;

        /// The whole row, for those who hear the screen.
        std::string spoken() const;

        friend bool operator==(const Row&, const Row&) = default;
    };

    /// What the Autopilot would do, with the buttons acceptLabel and dismissLabel.
    struct Suggestion {
        /// Stable while it is offered.
        std::string id;
        IconRef icon;
        /// "pause Docker Desktop"
        std::string title;
        std::string reason;
        std::string acceptHelp;
        std::string dismissHelp;
        friend bool operator==(const Suggestion&, const Suggestion&) = default;
    };

    /// What the Autopilot has done, with the button undoLabel.
    struct Live {
        std::uint64_t id = 0;
        /// "Paused" or "Demoted".
        std::string word;
        std::string target;
        /// "7 minutes left"
        std::string timeLeft;
        std::string undoHelp;
        friend bool operator==(const Live&, const Live&) = default;
    };

    struct Footer {
        /// feedbackLabel, buildingFeedback, or what came of it.
        std::string feedback;
        bool canSendFeedback = true;
        /// "Ctrl+Q"
        std::string quitKey;
        friend bool operator==(const Footer&, const Footer&) = default;
    };

    Header header;
    Middle middle = Middle::pending;
    /// The title of the pending and of the calm state; pending also has Pending::line under it.
    std::string title;

    /// Calm and findings.
    MemoryPicture picture;
    std::string scaleLine;

    // Findings only.
    ReadoutFace hero;
    std::vector<LegendItem> legend;
    FreeButtonFace free;
    /// With the symbol and the colour of what went well.
    std::optional<std::string> result;
    std::string gapLine;
    /// The resolved ones first.
    std::vector<Row> rows;
    /// "+ 3 more in Ravik"; opens the main window.
    std::optional<std::string> more;

    // All states.
    std::vector<Suggestion> suggestions;
    std::vector<Live> live;
    /// Instead of the live rows, where there are none.
    std::string autopilotLine;
    std::optional<std::string> week;
    Footer footer;

    PanelScreen() = default;
    PanelScreen(const PanelSource& source, const PanelMemory& memory);

    /// Brings the texts that time changes up to `source.now`; the next moment at which one of them changes, if any.
    std::optional<Time> tellTime(const PanelSource& source);

    friend bool operator==(const PanelScreen&, const PanelScreen&) = default;

private:
    void showMemory(const PanelSource& source, const ProcessIndex& index);
    void showFindings(const PanelSource& source, const PanelMemory& memory, const ProcessIndex& index);
    void showAutopilot(const PanelSource& source);
};

/// "15.2 of 16 GB used", or what is held beyond the installed memory: "17.0 GB used — 0.6 GB spilled to disk".
std::string memoryScaleLine(const MemoryPicture& picture);

/// The full command line that "Keep This One Running" of a finding keeps; absent where there is no such button.
std::optional<std::string> keepable(const Finding& finding, const ProcessIndex& index);

/// What a suggestion is known by as long as it is offered.
std::string suggestionId(const Decision& decision);

}  // namespace ravik
