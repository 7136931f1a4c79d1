#pragma once

#include <QtQml/qqmlregistration.h>

#include "App/Views/DiagnosisView.h"
#include "App/Views/Program.h"
#include "App/Views/RecordListModel.h"
#include "App/Views/View.h"
#include "Core/Screens/Sidebar.h"

namespace ravik::app {

/// The main window, from its opening to its closing.
class MainView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with its window")
    Q_PROPERTY(QString title READ title NOTIFY changed FINAL)
    Q_PROPERTY(QString goTitle READ goTitle CONSTANT FINAL)
    /// Roles `symbol`, `label`, `badge`, `isSelected`, `shortcut`, `spoken`.
    Q_PROPERTY(RecordModel* rows READ rows CONSTANT FINAL)
    Q_PROPERTY(QString readLabel READ readLabel CONSTANT FINAL)
    Q_PROPERTY(QString readKey READ readKey CONSTANT FINAL)
    Q_PROPERTY(bool isDiagnosis READ isDiagnosis NOTIFY changed FINAL)
    Q_PROPERTY(DiagnosisView* diagnosis READ diagnosis CONSTANT FINAL)

public:
    explicit MainView(const Program& program);
    ~MainView() override;

    QString title() const { return text(ravik::title(m_face.destination)); }
    QString goTitle() const { return text(GoMenu::title); }
    RecordModel* rows() { return &m_rows; }
    QString readLabel() const { return text(GoMenu::readNow(m_program.monitor.host())); }
    QString readKey() const { return text(m_program.monitor.host().nouns().refreshChord); }
    bool isDiagnosis() const { return m_face.destination == Destination::diagnosis; }
    DiagnosisView* diagnosis() { return &m_diagnosis; }

    /// The screen of a row of `rows`.
    Q_INVOKABLE void go(int row);
    Q_INVOKABLE void readNow() { m_program.monitor.refresh(); }
    Q_INVOKABLE void quit() { m_program.quit(); }

private:
    struct Face {
        Destination destination = Destination::diagnosis;
        Sidebar sidebar;
        friend bool operator==(const Face&, const Face&) = default;
    };

    void show();

    const Program& m_program;
    Face m_face;
    RecordListModel<SidebarRow> m_rows;
    DiagnosisView m_diagnosis;
    Subscription m_watching;
    Subscription m_navigating;
};

}  // namespace ravik::app
