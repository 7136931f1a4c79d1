#pragma once

#include <QtQml/qqmlregistration.h>

#include "App/Views/Cards.h"
#include "App/Views/View.h"
#include "Core/Screens/MapScreen.h"

namespace ravik::app {

/// The ring of the machine's memory and what stands beside it.
class MapView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a part of a view")
    Q_PROPERTY(QString value READ value NOTIFY changed FINAL)
    Q_PROPERTY(QString unit READ unit NOTIFY changed FINAL)
    Q_PROPERTY(QString caption READ caption NOTIFY changed FINAL)
    Q_PROPERTY(QString spoken READ spoken NOTIFY changed FINAL)
    /// Roles `id`, `spoken`, `isSelected`.
    Q_PROPERTY(RecordModel* arcs READ arcs CONSTANT FINAL)
    Q_PROPERTY(bool hasArc READ hasArc NOTIFY changed FINAL)
    Q_PROPERTY(QString hint READ hint NOTIFY changed FINAL)
    Q_PROPERTY(QString iconApp READ iconApp NOTIFY changed FINAL)
    Q_PROPERTY(QString iconSymbol READ iconSymbol NOTIFY changed FINAL)
    Q_PROPERTY(QString name READ name NOTIFY changed FINAL)
    Q_PROPERTY(QString amount READ amount NOTIFY changed FINAL)
    Q_PROPERTY(QString share READ share NOTIFY changed FINAL)
    Q_PROPERTY(QString nothing READ nothing NOTIFY changed FINAL)
    Q_PROPERTY(RecordModel* findings READ findings CONSTANT FINAL)
    Q_PROPERTY(RecordModel* panelResolved READ panelResolved CONSTANT FINAL)
    Q_PROPERTY(QString alsoFoundHeading READ alsoFoundHeading NOTIFY changed FINAL)
    Q_PROPERTY(RecordModel* alsoFound READ alsoFound CONSTANT FINAL)
    Q_PROPERTY(RecordModel* resolved READ resolved CONSTANT FINAL)

public:
    explicit MapView(QObject* parent);

    void show(const MapScreen& map);
    const MapScreen& face() const { return m_face; }

    QString value() const { return text(m_face.value); }
    QString unit() const { return text(m_face.unit); }
    QString caption() const { return text(m_face.caption); }
    QString spoken() const { return text(m_face.accessible); }
    RecordModel* arcs() { return &m_arcs; }
    bool hasArc() const { return m_face.panel.hasArc; }
    QString hint() const { return text(m_face.panel.hint); }
    /// Both empty for a part that has no icon.
    QString iconApp() const { return m_face.panel.icon ? text(m_face.panel.icon->app) : QString(); }
    QString iconSymbol() const { return m_face.panel.icon ? text(m_face.panel.icon->symbol) : QString(); }
    QString name() const { return text(m_face.panel.name); }
    QString amount() const { return text(m_face.panel.amount); }
    QString share() const { return text(m_face.panel.share); }
    QString nothing() const { return text(m_face.panel.nothing); }
    RecordModel* findings() { return &m_findings; }
    RecordModel* panelResolved() { return &m_panelResolved; }
    QString alsoFoundHeading() const { return text(m_face.alsoFoundHeading); }
    RecordModel* alsoFound() { return &m_alsoFound; }
    RecordModel* resolved() { return &m_resolved; }

private:
    MapScreen m_face;
    RecordListModel<MapScreen::Arc> m_arcs;
    CardList m_findings;
    ResolvedList m_panelResolved;
    CardList m_alsoFound;
    ResolvedList m_resolved;
};

}  // namespace ravik::app
