#include "App/Views/SectionView.h"

#include <algorithm>

namespace ravik::app {

SectionView::SectionView(DiagnosisSection::Kind kind, QObject* parent) : View(parent), m_kind(kind), m_cards(this) {}

void SectionView::show(const std::vector<DiagnosisScreen::Section>& sections) {
    const auto own = std::ranges::find(sections, m_kind, &DiagnosisScreen::Section::kind);
    m_cards.show(own == sections.end() ? std::vector<DiagnosisCard>() : own->cards);
}

void SectionView::drop(const QString& id) {
    QMetaObject::invokeMethod(
        this, [this, id] { m_cards.drop(id.toStdString()); }, Qt::QueuedConnection);
}

}  // namespace ravik::app
