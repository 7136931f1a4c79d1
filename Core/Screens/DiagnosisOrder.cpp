#include "Core/Screens/DiagnosisOrder.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

namespace ravik::DiagnosisOrder {

namespace {

bool holds(const Ids& ids, const std::string& id) { return std::ranges::find(ids, id) != ids.end(); }

}  // namespace

Ids keep(const Ids& previous, const Ids& current) {
    const std::unordered_set<std::string_view> present(current.begin(), current.end());
    std::unordered_set<std::string_view> placed;
    Ids kept;
    kept.reserve(current.size());
    for (const std::string& id : previous) {
        if (present.contains(id) && placed.insert(id).second) kept.push_back(id);
    }
    for (const std::string& id : current) {
        if (placed.insert(id).second) kept.push_back(id);
    }
    return kept;
}

std::optional<std::string> survivor(const std::optional<std::string>& selected, const Ids& previous,
                                    const Ids& current) {
    if (!selected || holds(current, *selected)) return selected;
    const auto gone = std::ranges::find(previous, *selected);
    const auto present = [&](const std::string& id) { return holds(current, id); };
    if (const auto below = std::find_if(gone, previous.end(), present); below != previous.end()) return *below;
    const auto above = std::find_if(std::make_reverse_iterator(gone), previous.rend(), present);
    return above == previous.rend() ? std::nullopt : std::optional(*above);
}

std::optional<std::string> moved(const std::optional<std::string>& selected, const Ids& ids, int step, bool cyclic) {
    if (ids.empty()) return std::nullopt;
    const auto count = static_cast<std::ptrdiff_t>(ids.size());
    const auto at = selected ? std::ranges::find(ids, *selected) : ids.end();
    if (at == ids.end()) return step < 0 ? ids.back() : ids.front();
    std::ptrdiff_t to = at - ids.begin() + step;
    to = cyclic ? ((to % count) + count) % count : std::clamp<std::ptrdiff_t>(to, 0, count - 1);
    return ids[static_cast<std::size_t>(to)];
}

}  // namespace ravik::DiagnosisOrder
