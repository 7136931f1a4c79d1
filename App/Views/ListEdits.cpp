#include "App/Views/ListEdits.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <unordered_map>

namespace ravik::app {

namespace {

using Places = std::vector<std::size_t>;

/// For each row of `from` its place in `to`; absent for those that go.
std::vector<std::optional<std::size_t>> places(const std::vector<std::string>& from,
                                               const std::vector<std::string>& to) {
    std::unordered_map<std::string_view, std::deque<std::size_t>> byId;
    for (std::size_t i = 0; i < to.size(); ++i) byId[to[i]].push_back(i);
    std::vector<std::optional<std::size_t>> result(from.size());
    for (std::size_t i = 0; i < from.size(); ++i) {
        const auto hit = byId.find(from[i]);
        if (hit == byId.end() || hit->second.empty()) continue;
        result[i] = hit->second.front();
        hit->second.pop_front();
    }
    return result;
}

/// Marks a longest rising run of `values`: the rows that need not move.
std::vector<bool> longestRising(const Places& values) {
    std::vector<std::size_t> ends;  // index of the smallest end of a run of each length
    std::vector<std::size_t> before(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto place = std::lower_bound(ends.begin(), ends.end(), values[i],
                                            [&](std::size_t end, std::size_t value) { return values[end] < value; });
        before[i] = place == ends.begin() ? i : *std::prev(place);
        if (place == ends.end()) {
            ends.push_back(i);
        } else {
            *place = i;
        }
    }
    std::vector<bool> stays(values.size());
    if (ends.empty()) return stays;
    for (std::size_t i = ends.back();; i = before[i]) {
        stays[i] = true;
        if (before[i] == i) return stays;
    }
}

void addMoves(Places rows, std::vector<ListEdit>& edits) {
    const auto stays = longestRising(rows);
    std::vector<bool> settled(rows.empty() ? 0 : *std::max_element(rows.begin(), rows.end()) + 1);
    Places moving;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (stays[i]) {
            settled[rows[i]] = true;
        } else {
            moving.push_back(rows[i]);
        }
    }
    for (const std::size_t row : moving) {
        const std::size_t at = std::size_t(std::ranges::find(rows, row) - rows.begin());
        rows.erase(rows.begin() + std::ptrdiff_t(at));
        const auto next = std::ranges::find_if(rows, [&](std::size_t other) { return settled[other] && other > row; });
        const std::size_t to = std::size_t(next - rows.begin());
        rows.insert(next, row);
        settled[row] = true;
        if (at != to) edits.push_back({ListEdit::Kind::move, at, 1, to});
    }
}

}  // namespace

std::vector<ListEdit> listEdits(const std::vector<std::string>& from, const std::vector<std::string>& to) {
    std::vector<ListEdit> edits;
    const auto place = places(from, to);
    for (std::size_t end = from.size(); end > 0;) {
        if (place[end - 1]) {
            --end;
            continue;
        }
        std::size_t first = end;
        while (first > 0 && !place[first - 1]) --first;
        edits.push_back({ListEdit::Kind::remove, first, end - first, 0});
        end = first;
    }

    Places rows;
    std::vector<bool> there(to.size());
    for (const auto& kept : place) {
        if (!kept) continue;
        rows.push_back(*kept);
        there[*kept] = true;
    }
    addMoves(std::move(rows), edits);

    for (std::size_t i = 0; i < to.size();) {
        if (there[i]) {
            ++i;
            continue;
        }
        const std::size_t first = i;
        while (i < to.size() && !there[i]) ++i;
        edits.push_back({ListEdit::Kind::insert, first, i - first, 0});
    }
    return edits;
}

}  // namespace ravik::app
