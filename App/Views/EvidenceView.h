#pragma once

#include <array>

#include <QtQml/qqmlregistration.h>

#include "App/Views/RecordListModel.h"
#include "App/Views/View.h"
#include "Core/Screens/EvidenceScreen.h"

namespace ravik::app {

/// The sheet with a finding's evidence. While it is closed it keeps what it showed last.
class EvidenceView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a part of a view")
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed FINAL)
    Q_PROPERTY(bool isGone READ isGone NOTIFY changed FINAL)
    Q_PROPERTY(QString iconApp READ iconApp NOTIFY changed FINAL)
    Q_PROPERTY(QString iconSymbol READ iconSymbol NOTIFY changed FINAL)
    Q_PROPERTY(QString name READ name NOTIFY changed FINAL)
    Q_PROPERTY(QString sentence READ sentence NOTIFY changed FINAL)
    Q_PROPERTY(int tone READ tone NOTIFY changed FINAL)
    Q_PROPERTY(QString verdict READ verdict NOTIFY changed FINAL)
    Q_PROPERTY(QString verdictSpoken READ verdictSpoken NOTIFY changed FINAL)
    Q_PROPERTY(RecordModel* rows READ rows CONSTANT FINAL)
    Q_PROPERTY(QString rowsSpoken READ rowsSpoken CONSTANT FINAL)
    Q_PROPERTY(RecordModel* tree READ tree CONSTANT FINAL)
    Q_PROPERTY(bool hasKeep READ hasKeep NOTIFY changed FINAL)
    Q_PROPERTY(bool canKeep READ canKeep NOTIFY changed FINAL)
    Q_PROPERTY(QString keepLabel READ keepLabel NOTIFY changed FINAL)
    Q_PROPERTY(QString keepLine READ keepLine NOTIFY changed FINAL)
    Q_PROPERTY(bool hasKeepFailed READ hasKeepFailed NOTIFY changed FINAL)
    Q_PROPERTY(QString closeLabel READ closeLabel NOTIFY changed FINAL)
    Q_PROPERTY(QString spoken READ spoken NOTIFY changed FINAL)

public:
    explicit EvidenceView(QObject* parent);
    ~EvidenceView() override;

    void show(const std::optional<EvidenceScreen>& sheet);

    bool isOpen() const { return m_face.isOpen; }
    bool isGone() const { return m_face.sheet.isGone; }
    QString iconApp() const { return text(m_face.sheet.icon.app); }
    QString iconSymbol() const { return text(m_face.sheet.icon.symbol); }
    QString name() const { return text(m_face.sheet.name); }
    QString sentence() const { return text(m_face.sheet.sentence); }
    int tone() const { return int(m_face.sheet.verdict.shape); }
    QString verdict() const { return text(m_face.sheet.verdict.word); }
    QString verdictSpoken() const { return text(m_face.sheet.verdict.spoken()); }
    /// Roles `label`, `value`, `isTree` (it is drawn as `tree`), `more`, `spoken`.
    RecordModel* rows() { return &m_rows; }
    QString rowsSpoken() const { return text(EvidenceScreen::rowsSpoken); }
    RecordModel* tree() { return &m_tree; }
    bool hasKeep() const { return m_face.sheet.keep.has_value(); }
    bool canKeep() const { return hasKeep() && m_face.sheet.keep->isEnabled; }
    QString keepLabel() const { return hasKeep() ? text(m_face.sheet.keep->label) : QString(); }
    QString keepLine() const { return hasKeep() ? text(m_face.sheet.keep->line) : QString(); }
    bool hasKeepFailed() const { return hasKeep() && m_face.sheet.keep->hasFailed; }
    QString closeLabel() const { return text(m_face.sheet.closeLabel); }
    QString spoken() const { return text(m_face.sheet.accessible); }

private:
    /// Two rows may have the same label.
    struct Placed {
        std::size_t place = 0;
        EvidenceScreen::Row row;
        friend bool operator==(const Placed&, const Placed&) = default;
    };
    struct Face {
        bool isOpen = false;
        EvidenceScreen sheet;
        friend bool operator==(const Face&, const Face&) = default;
    };

    static const std::array<RecordListModel<Placed>::Role, 5> rowRoles;

    Face m_face;
    /// Of the one row that is drawn as a tree.
    RecordListModel<TreeLine> m_tree;
    RecordListModel<Placed> m_rows;
};

}  // namespace ravik::app
