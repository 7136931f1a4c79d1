#include "App/Views/MemoryPictureView.h"

#include <array>

namespace ravik::app {

namespace {

const std::array<RecordListModel<LegendItem>::Role, 2> roles{{
    {"mark", [](const LegendItem& item) { return static_cast<int>(item.mark); }},
    {"words", &LegendItem::text},
}};

}  // namespace

MemoryPictureView::MemoryPictureView(QObject* parent)
    : View(parent),
      m_legend(
          roles, [](const LegendItem& item) { return std::to_string(int(item.mark)); }, this) {}

void MemoryPictureView::show(MemoryBarFace face, const std::vector<LegendItem>& legend) {
    m_legend.set(legend);
    publish(m_face, std::move(face));
}

}  // namespace ravik::app
