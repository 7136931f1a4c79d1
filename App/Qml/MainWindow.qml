import QtQuick
import Ravik

// The list of screens on the left, the chosen one beside it, and a sheet over both.
Window {
    id: window

    required property MainView model
    readonly property bool hasSheet: model.diagnosis.evidence.isOpen

    width: 960
    height: 640
    minimumWidth: 820
    minimumHeight: 420
    color: Tokens.window
    title: model.title
    onHasSheetChanged: if (!hasSheet)
        screens.forceActiveFocus()

    FocusScope {
        id: screens

        anchors.fill: parent
        focus: !window.hasSheet
        LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
        LayoutMirroring.childrenInherit: true

        Sidebar {
            id: sidebar

            anchors.left: parent.left
            height: parent.height
            model: window.model
            isOpen: !window.hasSheet
        }

        Loader {
            anchors.left: sidebar.right
            anchors.right: parent.right
            height: parent.height
            focus: true
            active: window.model.isDiagnosis
            sourceComponent: DiagnosisPane {
                model: window.model.diagnosis
                hasKeys: !window.hasSheet
            }
        }
    }

    Loader {
        anchors.fill: parent
        active: window.hasSheet
        focus: active
        LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
        LayoutMirroring.childrenInherit: true
        sourceComponent: EvidenceSheet {
            model: window.model.diagnosis
        }
    }

    Shortcut {
        sequence: window.model.readKey
        onActivated: window.model.readNow()
    }

    Shortcut {
        sequence: "Ctrl+W"
        onActivated: window.close()
    }

    Shortcut {
        sequence: "Ctrl+Q"
        onActivated: window.model.quit()
    }
}
