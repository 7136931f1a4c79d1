#pragma once

#include <QtQml/qqmlregistration.h>

#include "App/Views/Cards.h"
#include "App/Views/View.h"

namespace ravik::app {

/// One stretch of cards. It is there for as long as one of its cards is, even if that is on its way out.
class SectionView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a part of a view")
    Q_PROPERTY(QString heading READ heading CONSTANT FINAL)
    Q_PROPERTY(RecordModel* cards READ cards CONSTANT FINAL)

public:
    SectionView(DiagnosisSection::Kind kind, QObject* parent);

    /// Its own out of these.
    void show(const std::vector<DiagnosisScreen::Section>& sections);

    QString heading() const { return text(DiagnosisSections::heading(m_kind)); }
    RecordModel* cards() { return &m_cards; }

    /// A card has been seen to leave. It goes when the loop turns: with reduced motion it leaves while the list is
    /// being told of it.
    Q_INVOKABLE void drop(const QString& id);

private:
    const DiagnosisSection::Kind m_kind;
    CardList m_cards;
};

}  // namespace ravik::app
