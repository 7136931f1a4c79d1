#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Screens/DiagnosisCard.h"
#include "Core/Screens/ScreenInput.h"
#include "Core/Wording/Tree.h"

namespace ravik {

/// The sheet with a finding's evidence, by value.
struct EvidenceScreen {
    /// Lines of a process tree that are shown; the rest is counted.
    static constexpr std::size_t treeLines = 12;

    /// The rows as a list, for those who hear the screen.
    static constexpr std::string_view rowsSpoken = "Evidence";

    struct Row {
        std::string label;
        /// Empty where `tree` stands in its place.
        std::string value;
        std::vector<TreeLine> tree;
        /// "3 more" below a tree that is longer; else empty.
        std::string more;
        /// The lines of a tree speak for themselves.
        std::string accessible;
        friend bool operator==(const Row&, const Row&) = default;
    };

    struct Keep {
        std::string label;
        /// What it means, or that it failed.
        std::string line;
        /// The full command line that is to be left running.
        std::string command;
        /// False: it is kept already.
        bool isEnabled = true;
        bool hasFailed = false;
        friend bool operator==(const Keep&, const Keep&) = default;
    };

    /// The finding that the sheet was opened for.
    std::string id;
    /// It has ended or changed since: there is only `name` as the title, and `sentence`.
    bool isGone = false;
    IconRef icon;
    std::string name;
    std::string sentence;
    VerdictFace verdict;
    std::vector<Row> rows;
    std::optional<Keep> keep;
    std::string closeLabel;
    /// The header, for those who hear the screen.
    std::string accessible;

    EvidenceScreen() = default;
    /// Of the finding with that id in the reading. `keepFailed`: the last attempt to keep it could not be stored.
    EvidenceScreen(const std::string& of, const ScreenInput& input, bool keepFailed = false);

    /// The full command line that keeping this finding's subject stores; absent where it cannot be kept.
    static std::optional<std::string> keepCommand(const Finding& finding, const ProcessIndex& index);

    friend bool operator==(const EvidenceScreen&, const EvidenceScreen&) = default;
};

}  // namespace ravik
