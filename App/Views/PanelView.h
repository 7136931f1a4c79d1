#pragma once

#include <QtQml/qqmlregistration.h>

#include "App/Views/MemoryPictureView.h"
#include "App/Views/Program.h"
#include "App/Views/RecordListModel.h"
#include "App/Views/View.h"
#include "Core/Screens/PanelModel.h"

namespace ravik::app {

/// The panel, for one opening.
class PanelView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with its window")

    Q_PROPERTY(QString word READ word CONSTANT FINAL)
    Q_PROPERTY(QString checked READ checked NOTIFY changed FINAL)
    Q_PROPERTY(QString checkedHelp READ checkedHelp NOTIFY changed FINAL)

    Q_PROPERTY(bool isPending READ isPending NOTIFY changed FINAL)
    Q_PROPERTY(bool isCalm READ isCalm NOTIFY changed FINAL)
    Q_PROPERTY(bool hasFindings READ hasFindings NOTIFY changed FINAL)
    Q_PROPERTY(QString title READ title NOTIFY changed FINAL)
    Q_PROPERTY(QString pendingLine READ pendingLine CONSTANT FINAL)
    Q_PROPERTY(QString calmSymbol READ calmSymbol CONSTANT FINAL)

    Q_PROPERTY(ravik::app::MemoryPictureView* picture READ picture CONSTANT FINAL)
    Q_PROPERTY(QString scaleLine READ scaleLine NOTIFY changed FINAL)

    Q_PROPERTY(QString heroValue READ heroValue NOTIFY changed FINAL)
    Q_PROPERTY(QString heroUnit READ heroUnit NOTIFY changed FINAL)
    Q_PROPERTY(QString heroSpoken READ heroSpoken NOTIFY changed FINAL)
    Q_PROPERTY(QString heroCaption READ heroCaption CONSTANT FINAL)
    Q_PROPERTY(QString freeLabel READ freeLabel NOTIFY changed FINAL)
    Q_PROPERTY(QString freeHelp READ freeHelp CONSTANT FINAL)
    Q_PROPERTY(bool canFree READ canFree NOTIFY changed FINAL)
    Q_PROPERTY(bool isFreeing READ isFreeing NOTIFY changed FINAL)
    Q_PROPERTY(QString result READ result NOTIFY changed FINAL)
    Q_PROPERTY(QString gapLine READ gapLine NOTIFY changed FINAL)
    Q_PROPERTY(ravik::app::RecordModel* rows READ rows CONSTANT FINAL)
    Q_PROPERTY(QString keepLabel READ keepLabel CONSTANT FINAL)
    Q_PROPERTY(QString keepSymbol READ keepSymbol CONSTANT FINAL)
    Q_PROPERTY(QString more READ more NOTIFY changed FINAL)

    Q_PROPERTY(ravik::app::RecordModel* suggestions READ suggestions CONSTANT FINAL)
    Q_PROPERTY(QString suggestionsTitle READ suggestionsTitle CONSTANT FINAL)
    Q_PROPERTY(QString acceptLabel READ acceptLabel CONSTANT FINAL)
    Q_PROPERTY(QString dismissLabel READ dismissLabel CONSTANT FINAL)
    Q_PROPERTY(ravik::app::RecordModel* live READ live CONSTANT FINAL)
    Q_PROPERTY(QString undoLabel READ undoLabel CONSTANT FINAL)
    Q_PROPERTY(QString autopilotSymbol READ autopilotSymbol CONSTANT FINAL)
    Q_PROPERTY(QString autopilotLine READ autopilotLine NOTIFY changed FINAL)
    Q_PROPERTY(QString weekSymbol READ weekSymbol CONSTANT FINAL)
    Q_PROPERTY(QString week READ week NOTIFY changed FINAL)

    Q_PROPERTY(QString openLabel READ openLabel CONSTANT FINAL)
    Q_PROPERTY(QString feedback READ feedback NOTIFY changed FINAL)
    Q_PROPERTY(bool canSendFeedback READ canSendFeedback NOTIFY changed FINAL)
    Q_PROPERTY(QString quitLabel READ quitLabel CONSTANT FINAL)
    Q_PROPERTY(QString quitKey READ quitKey NOTIFY changed FINAL)
    Q_PROPERTY(QString readKey READ readKey CONSTANT FINAL)
    /// One for each screen of the main window, in their order.
    Q_PROPERTY(QStringList screenKeys READ screenKeys CONSTANT FINAL)

public:
    explicit PanelView(const Program& program);

    QString word() const { return text(PanelScreen::word); }
    QString checked() const { return text(m_screen.header.checked); }
    QString checkedHelp() const { return text(m_screen.header.tooltip); }

    bool isPending() const { return m_screen.middle == PanelScreen::Middle::pending; }
    bool isCalm() const { return m_screen.middle == PanelScreen::Middle::calm; }
    bool hasFindings() const { return m_screen.middle == PanelScreen::Middle::findings; }
    QString title() const { return text(m_screen.title); }
    QString pendingLine() const { return text(Pending::line); }
    QString calmSymbol() const { return text(PanelScreen::calmSymbol); }

    MemoryPictureView* picture() { return &m_picture; }
    QString scaleLine() const { return text(m_screen.scaleLine); }

    QString heroValue() const { return text(m_screen.hero.value); }
    QString heroUnit() const { return text(m_screen.hero.unit); }
    QString heroSpoken() const { return text(m_screen.hero.spoken()); }
    QString heroCaption() const { return text(PanelScreen::heroCaption); }
    QString freeLabel() const { return text(m_screen.free.label); }
    QString freeHelp() const { return text(FreeButtonFace::help); }
    bool canFree() const { return m_screen.free.isEnabled; }
    bool isFreeing() const { return m_screen.free.isBusy; }
    QString result() const { return text(m_screen.result); }
    QString gapLine() const { return text(m_screen.gapLine); }
    RecordModel* rows() { return &m_rows; }
    QString keepLabel() const { return text(PanelScreen::keepLabel); }
    QString keepSymbol() const { return text(PanelScreen::keepSymbol); }
    QString more() const { return text(m_screen.more); }

    RecordModel* suggestions() { return &m_suggestions; }
    QString suggestionsTitle() const { return text(PanelScreen::suggestionsTitle); }
    QString acceptLabel() const { return text(PanelScreen::acceptLabel); }
    QString dismissLabel() const { return text(PanelScreen::dismissLabel); }
    RecordModel* live() { return &m_live; }
    QString undoLabel() const { return text(PanelScreen::undoLabel); }
    QString autopilotSymbol() const { return text(PanelScreen::autopilotSymbol); }
    QString autopilotLine() const { return text(m_screen.autopilotLine); }
    QString weekSymbol() const { return text(PanelScreen::weekSymbol); }
    QString week() const { return text(m_screen.week); }

    QString openLabel() const { return text(PanelScreen::openLabel); }
    QString feedback() const { return text(m_screen.footer.feedback); }
    bool canSendFeedback() const { return m_screen.footer.canSendFeedback; }
    QString quitLabel() const { return text(PanelScreen::quitLabel); }
    QString quitKey() const { return text(m_screen.footer.quitKey); }
    QString readKey() const { return text(m_program.monitor.host().nouns().refreshChord); }
    QStringList screenKeys() const;

    Q_INVOKABLE void run(const QString& finding) { m_model.run(finding.toStdString()); }
    Q_INVOKABLE void free() { m_model.free(); }
    Q_INVOKABLE void keep(const QString& finding) { m_model.keep(finding.toStdString()); }
    Q_INVOKABLE void undo(const QString& action) { m_model.undo(action.toULongLong()); }
    Q_INVOKABLE void accept(const QString& suggestion) { m_model.accept(suggestion.toStdString()); }
    Q_INVOKABLE void dismiss(const QString& suggestion) { m_model.dismiss(suggestion.toStdString()); }
    Q_INVOKABLE void sendFeedback() { m_model.sendFeedback(); }
    Q_INVOKABLE void holdRows(bool hold) { m_model.holdRows(hold); }
    Q_INVOKABLE void readNow() { m_program.monitor.refresh(); }
    Q_INVOKABLE void pointAt(const QString& finding, bool isOver) { m_model.pointAt(finding.toStdString(), isOver); }
    Q_INVOKABLE void openMain() { m_program.openMain(); }
    /// The main window on the screen of a key.
    Q_INVOKABLE void openScreen(int key);
    Q_INVOKABLE void quit() { m_program.quit(); }

private:
    void show();

    const Program& m_program;
    PanelModel m_model;
    PanelScreen m_screen;
    MemoryPictureView m_picture;
    RecordListModel<PanelScreen::Row> m_rows;
    RecordListModel<PanelScreen::Suggestion> m_suggestions;
    RecordListModel<PanelScreen::Live> m_live;
};

}  // namespace ravik::app
