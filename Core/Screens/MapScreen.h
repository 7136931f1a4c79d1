#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Core/Screens/DiagnosisCard.h"
#include "Core/Screens/DiagnosisScreen.h"
#include "Core/Screens/DiagnosisState.h"
#include "Core/Screens/ScreenInput.h"

namespace ravik {

/// The ring of the machine's memory and what is said of the chosen part of it, by value. Angles in degrees, clockwise
/// from the top.
struct MapScreen {
    /// A stretch of a ring; nothing is drawn of a span of 0.
    struct Span {
        double start = 0;
        double degrees = 0;
        friend bool operator==(const Span&, const Span&) = default;
    };

    /// One app: what it holds on the inner ring, what it can give back on the outer one, over the end of its own arc.
    struct Arc {
        enum class Fill { held, rest };
        /// Its own among the arcs, stable from tick to tick.
        std::string id;
        std::string label;
        /// "30%" of what the whole ring stands for.
        std::string share;
        std::optional<IconRef> icon;
        Fill fill = Fill::held;
        Span span;
        /// Comes back by quitting.
        Span quit;
        /// Ends with Free.
        Span free;
        bool isSelected = false;
        std::string accessible;
        friend bool operator==(const Arc&, const Arc&) = default;
    };

    /// What stands beside the ring.
    struct Panel {
        /// Without a selected arc there is only `hint`.
        bool hasArc = false;
        std::string hint;
        std::optional<IconRef> icon;
        std::string name;
        /// "5.0 GB"
        std::string amount;
        std::string share;
        std::vector<DiagnosisCard> findings;
        /// What came of the findings of this part that have been acted on.
        std::vector<DiagnosisScreen::Resolved> resolved;
        /// Instead of findings, where there are none.
        std::string nothing;
        friend bool operator==(const Panel&, const Panel&) = default;
    };

    std::vector<Arc> arcs;
    /// In the ring: what is held, and of how much.
    std::string value;
    std::string unit;
    std::string caption;
    /// Where the installed memory ends; 360 where all that is held fits into it.
    double ramAt = 360;
    /// What is held ends here. Beyond `ramAt` it is spilled to disk.
    double heldAt = 0;
    Panel panel;
    std::string alsoFoundHeading;
    /// Findings that belong to no part of the ring.
    std::vector<DiagnosisCard> alsoFound;
    /// What came of the actions that the panel does not tell of.
    std::vector<DiagnosisScreen::Resolved> resolved;
    std::string accessible;

    MapScreen() = default;
    MapScreen(const ScreenInput& input, const MemoryPicture& picture, const DiagnosisState& state);

    /// Ids of the arcs, clockwise.
    DiagnosisOrder::Ids arcIds() const;

    friend bool operator==(const MapScreen&, const MapScreen&) = default;
};

}  // namespace ravik
