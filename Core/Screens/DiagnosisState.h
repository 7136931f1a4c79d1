#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Core/Base/Time.h"
#include "Core/Diagnosis/Finding.h"
#include "Core/Screens/DiagnosisOrder.h"
#include "Core/Wording/AppIcons.h"

namespace ravik {

/// What the Diagnosis screen remembers from one reading to the next.
struct DiagnosisState {
    enum class Mode { cards, map };

    /// A finding that was acted on. Its name and icon are of the moment of the action: afterwards the subject has gone.
    struct Done {
        Finding finding;
        std::string line;
        std::string name;
        IconRef icon;
        /// Tells it from an earlier action on a finding of the same id.
        int number = 0;
        Time at = 0;
        /// It was ended with others, and its line says nothing of it alone.
        bool byFree = false;
        /// It stands for the card of its finding.
        bool replacesCard = true;
        friend bool operator==(const Done&, const Done&) = default;
    };

    Mode mode = Mode::cards;
    /// The last action's outcome.
    std::optional<std::string> result;
    /// What is under way.
    std::optional<std::string> running;
    /// What stands in the Free button while Free runs.
    std::optional<std::string> freeing;
    /// Ids of findings whose action is under way.
    std::set<std::string> ending;
    /// In the order of the actions.
    std::vector<Done> done;
    std::optional<std::string> selected;
    std::optional<std::string> selectedArc;
    /// Ids of the cards and of the arcs as they stand: what is held keeps this order. Absent: by the reading's own.
    std::optional<DiagnosisOrder::Ids> cardOrder;
    std::optional<DiagnosisOrder::Ids> arcOrder;

    /// Whether an action stands for this finding's card.
    bool isDone(const std::string& id) const;
};

}  // namespace ravik
