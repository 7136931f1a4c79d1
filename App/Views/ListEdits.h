#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ravik::app {

/// One step from a list to its successor, in the terms of the list as it is just before that step.
struct ListEdit {
    enum class Kind { remove, move, insert };
    Kind kind = Kind::remove;
    std::size_t at = 0;
    /// Rows removed or inserted; a move is of one row.
    std::size_t count = 1;
    /// Of a move: where the row stands afterwards.
    std::size_t to = 0;

    friend bool operator==(const ListEdit&, const ListEdit&) = default;
};

/// The way from the rows with the ids `from` to those with the ids `to`: first what goes, then what changes places,
/// each at most once and as few as can be, then what comes. An id that stands twice counts as two rows.
std::vector<ListEdit> listEdits(const std::vector<std::string>& from, const std::vector<std::string>& to);

}  // namespace ravik::app
