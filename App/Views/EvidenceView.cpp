#include "App/Views/EvidenceView.h"

namespace ravik::app {

namespace {

const std::array<RecordListModel<TreeLine>::Role, 3> treeRoles{{
    {"depth", &TreeLine::depth},
    {"label", &TreeLine::label},
    {"mb", &TreeLine::mb},
}};

}  // namespace

const std::array<RecordListModel<EvidenceView::Placed>::Role, 5> EvidenceView::rowRoles{{
    {"label", [](const Placed& placed) { return placed.row.label; }},
    {"value", [](const Placed& placed) { return placed.row.value; }},
    {"isTree", [](const Placed& placed) { return !placed.row.tree.empty(); }},
    {"more", [](const Placed& placed) { return placed.row.more; }},
    {"spoken", [](const Placed& placed) { return placed.row.accessible; }},
}};

EvidenceView::EvidenceView(QObject* parent)
    : View(parent),
      m_tree(
          treeRoles, [](const TreeLine& line) { return std::to_string(line.id); }, this),
      m_rows(
          rowRoles, [](const Placed& placed) { return std::to_string(placed.place); }, this) {}

EvidenceView::~EvidenceView() = default;

void EvidenceView::show(const std::optional<EvidenceScreen>& sheet) {
    if (!sheet) {
        publish(m_face, {false, m_face.sheet});
        return;
    }
    std::vector<TreeLine> tree;
    std::vector<Placed> rows;
    for (const EvidenceScreen::Row& row : sheet->rows) {
        tree.insert(tree.end(), row.tree.begin(), row.tree.end());
        rows.push_back({rows.size(), row});
    }
    m_tree.set(std::move(tree));
    m_rows.set(std::move(rows));
    publish(m_face, {true, *sheet});
}

}  // namespace ravik::app
