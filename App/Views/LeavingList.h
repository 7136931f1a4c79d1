#pragma once

#include <algorithm>
#include <functional>
#include <span>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "App/Views/RecordListModel.h"

namespace ravik::app {

/// A row of a list and whether it is on its way out.
template <typename Record>
struct LeavingRow {
    Record record;
    bool isLeaving = false;
    friend bool operator==(const LeavingRow&, const LeavingRow&) = default;
};

/// A list whose rows stay for a while after they have gone from it, marked, so that they can be seen to leave: a
/// delegate tells with drop() when it has shown that. At the top of what it shows a row that leaves keeps its place.
template <typename Record>
class LeavingList : public RecordListModel<LeavingRow<Record>> {
public:
    using Row = LeavingRow<Record>;
    using Base = RecordListModel<Row>;

    LeavingList(std::span<const typename Base::Role> roles, typename Base::Id id, QObject* parent)
        : Base(roles, id, parent), m_id(std::move(id)) {}

    void show(const std::vector<Record>& records) {
        std::vector<Row> next;
        next.reserve(records.size());
        std::unordered_set<std::string> staying;
        for (const Record& record : records) staying.insert(m_id(next.emplace_back(Row{record, false})));
        const std::vector<Row>& held = Base::records();
        for (std::size_t at = 0; at < held.size(); ++at) {
            if (staying.contains(m_id(held[at]))) continue;
            // Behind the row that it stood behind.
            auto behind = at == 0 ? next.begin() : place(next, m_id(held[at - 1]));
            if (at > 0) behind = behind == next.end() ? next.end() : behind + 1;
            next.insert(behind, {held[at].record, true});
        }
        Base::set(std::move(next));
    }

    /// Nothing for a row that has come back.
    void drop(const std::string& id) {
        std::vector<Row> next = Base::records();
        const auto gone = std::erase_if(next, [&](const Row& row) { return row.isLeaving && m_id(row) == id; });
        if (gone > 0) Base::set(std::move(next));
    }

private:
    auto place(std::vector<Row>& rows, const std::string& id) const {
        return std::ranges::find_if(rows, [&](const Row& row) { return m_id(row) == id; });
    }

    const typename Base::Id m_id;
};

}  // namespace ravik::app
