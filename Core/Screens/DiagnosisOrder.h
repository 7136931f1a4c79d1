#pragma once

#include <optional>
#include <string>
#include <vector>

/// Which row stands where from tick to tick. Pure functions over stable ids, each of which occurs once in a list.
namespace ravik::DiagnosisOrder {

using Ids = std::vector<std::string>;

/// The rows while they are held in their place: what stays keeps its order, what has gone is dropped, what is new
/// comes last.
Ids keep(const Ids& previous, const Ids& current);

/// The row that is selected once `current` has taken the place of `previous`: the same one while it is there, else
/// the nearest below it that still is, else the nearest above. Absent where none is left, or none was selected.
std::optional<std::string> survivor(const std::optional<std::string>& selected, const Ids& previous,
                                    const Ids& current);

/// The row `step` places further on. At either end it stays, or goes round where the rows are `cyclic`; without a
/// selection it is the first, or the last on the way back.
std::optional<std::string> moved(const std::optional<std::string>& selected, const Ids& ids, int step, bool cyclic);

}  // namespace ravik::DiagnosisOrder
