#include "App/Views/MapView.h"

#include <array>

namespace ravik::app {

namespace {

using Arc = MapScreen::Arc;

const std::array<RecordListModel<Arc>::Role, 3> arcRoles{{
    {"id", &Arc::id},
    {"spoken", &Arc::accessible},
    {"isSelected", &Arc::isSelected},
}};

/// Another arc's findings take the place of these at once: none of them has left.
std::vector<LeavingRow<DiagnosisCard>> staying(const std::vector<DiagnosisCard>& cards) {
    std::vector<LeavingRow<DiagnosisCard>> rows;
    rows.reserve(cards.size());
    for (const DiagnosisCard& card : cards) rows.push_back({card, false});
    return rows;
}

}  // namespace

MapView::MapView(QObject* parent)
    : View(parent),
      m_arcs(arcRoles, &Arc::id, this),
      m_findings(this),
      m_panelResolved(this),
      m_alsoFound(this),
      m_resolved(this) {}

void MapView::show(const MapScreen& map) {
    if (map == m_face) return;
    m_arcs.set(map.arcs);
    m_findings.set(staying(map.panel.findings));
    m_panelResolved.set(map.panel.resolved);
    m_alsoFound.set(staying(map.alsoFound));
    m_resolved.set(map.resolved);
    publish(m_face, map);
}

}  // namespace ravik::app
