#pragma once

#include <array>
#include <memory>

#include <QtQml/qqmlregistration.h>
#include <QQmlListProperty>

#include "App/Views/BeforeAfterView.h"
#include "App/Views/EvidenceView.h"
#include "App/Views/HeroView.h"
#include "App/Views/MapView.h"
#include "App/Views/Program.h"
#include "App/Views/SectionView.h"
#include "Core/Screens/DiagnosisModel.h"

namespace ravik::app {

/// The Diagnosis screen and its sheet, for as long as the window is open.
class DiagnosisView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a part of a view")
    Q_PROPERTY(bool isWaiting READ isWaiting NOTIFY changed FINAL)
    Q_PROPERTY(bool isCalm READ isCalm NOTIFY changed FINAL)
    Q_PROPERTY(bool hasFindings READ hasFindings NOTIFY changed FINAL)
    Q_PROPERTY(QString waitingTitle READ waitingTitle NOTIFY changed FINAL)
    Q_PROPERTY(QString waitingLine READ waitingLine NOTIFY changed FINAL)
    Q_PROPERTY(QString calmSymbol READ calmSymbol NOTIFY changed FINAL)
    Q_PROPERTY(QString calmTitle READ calmTitle NOTIFY changed FINAL)
    Q_PROPERTY(QString calmLine READ calmLine NOTIFY changed FINAL)
    Q_PROPERTY(MemoryPictureView* calmPicture READ calmPicture CONSTANT FINAL)

    Q_PROPERTY(HeroView* hero READ hero CONSTANT FINAL)
    Q_PROPERTY(BeforeAfterView* beforeAfter READ beforeAfter CONSTANT FINAL)
    Q_PROPERTY(QStringList modes READ modes NOTIFY changed FINAL)
    Q_PROPERTY(int mode READ mode NOTIFY changed FINAL)
    Q_PROPERTY(QString modeHelp READ modeHelp NOTIFY changed FINAL)
    Q_PROPERTY(bool isMap READ isMap NOTIFY changed FINAL)
    Q_PROPERTY(QQmlListProperty<ravik::app::SectionView> sections READ sections CONSTANT FINAL)
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY changed FINAL)
    Q_PROPERTY(RecordModel* resolved READ resolved CONSTANT FINAL)
    Q_PROPERTY(MapView* map READ map CONSTANT FINAL)
    Q_PROPERTY(EvidenceView* evidence READ evidence CONSTANT FINAL)
    Q_PROPERTY(QString runKey READ runKey CONSTANT FINAL)
    Q_PROPERTY(QString moreHelp READ moreHelp CONSTANT FINAL)

public:
    DiagnosisView(const Program& program, QObject* parent);
    ~DiagnosisView() override;

    bool isWaiting() const { return m_face.state == DiagnosisScreen::State::waiting; }
    bool isCalm() const { return m_face.state == DiagnosisScreen::State::calm; }
    bool hasFindings() const { return m_face.state == DiagnosisScreen::State::findings; }
    QString waitingTitle() const { return text(m_face.waiting.title); }
    QString waitingLine() const { return text(m_face.waiting.line); }
    QString calmSymbol() const { return text(m_face.calm.symbol); }
    QString calmTitle() const { return text(m_face.calm.title); }
    QString calmLine() const { return text(m_face.calm.line); }
    MemoryPictureView* calmPicture() { return &m_calmPicture; }

    HeroView* hero() { return &m_hero; }
    BeforeAfterView* beforeAfter() { return &m_beforeAfter; }
    /// In the order of DiagnosisState::Mode.
    QStringList modes() const { return {text(m_face.picker.cardsLabel), text(m_face.picker.mapLabel)}; }
    int mode() const { return int(m_face.picker.selected); }
    QString modeHelp() const { return text(m_face.picker.help); }
    bool isMap() const { return m_face.picker.selected == DiagnosisState::Mode::map; }
    QQmlListProperty<SectionView> sections() { return {this, &m_sections}; }
    bool hasSelection() const { return m_face.hasSelection; }
    /// Below the cards; the map has its own.
    RecordModel* resolved() { return &m_resolved; }
    MapView* map() { return &m_map; }
    EvidenceView* evidence() { return &m_evidence; }
    QString moreHelp() const { return text(InfoButton::help); }
    QString runKey() const { return text(m_program.monitor.host().nouns().confirmChord); }

    Q_INVOKABLE void free() { m_model.free(); }
    Q_INVOKABLE void run(const QString& finding) { m_model.run(finding.toStdString()); }
    Q_INVOKABLE void runSelected() { m_model.runSelected(); }
    Q_INVOKABLE void setMode(int mode) { m_model.setMode(DiagnosisState::Mode(mode)); }
    Q_INVOKABLE void select(const QString& finding) { m_model.select(finding.toStdString()); }
    Q_INVOKABLE void deselect() { m_model.select({}); }
    Q_INVOKABLE void selectNext() { m_model.selectNext(); }
    Q_INVOKABLE void selectPrevious() { m_model.selectPrevious(); }
    Q_INVOKABLE void selectArc(const QString& arc) { m_model.selectArc(arc.toStdString()); }
    Q_INVOKABLE void deselectArc() { m_model.selectArc({}); }
    Q_INVOKABLE void selectNextArc() { m_model.selectNextArc(); }
    Q_INVOKABLE void selectPreviousArc() { m_model.selectPreviousArc(); }
    Q_INVOKABLE void setPointerOver(bool isOver) { m_model.setPointerOver(isOver); }
    Q_INVOKABLE void open(const QString& finding);
    Q_INVOKABLE void closeSheet();
    Q_INVOKABLE void keep() { m_model.keep(); }

private:
    /// What of the screen this view answers itself.
    struct Face {
        DiagnosisScreen::State state = DiagnosisScreen::State::waiting;
        DiagnosisScreen::Waiting waiting;
        DiagnosisScreen::Calm calm;
        DiagnosisScreen::ModePicker picker;
        bool hasSelection = false;
        friend bool operator==(const Face&, const Face&) = default;
    };

    void show();
    void followNav();

    const Program& m_program;
    DiagnosisModel m_model;
    Face m_face;
    MemoryPictureView m_calmPicture;
    HeroView m_hero;
    BeforeAfterView m_beforeAfter;
    QList<SectionView*> m_sections;
    ResolvedList m_resolved;
    MapView m_map;
    EvidenceView m_evidence;
    Subscription m_navigating;
};

}  // namespace ravik::app
