import QtQuick
import Ravik

// How much can be had back and why, in its three states.
FocusScope {
    id: pane

    required property DiagnosisView model
    /// The keys of the screen are heard.
    required property bool hasKeys

    focus: true

    ScrollArea {
        id: area

        anchors.fill: parent
        focus: !pane.model.hasFindings
        padding: Math.max(Tokens.windowPadding, (width - 744) / 2)
        topPadding: Tokens.windowPadding
        bottomPadding: Tokens.windowPadding

        Loader {
            width: parent.width
            active: pane.model.isWaiting
            visible: active
            sourceComponent: DiagnosisWaiting {
                model: pane.model
                room: area.height
            }
        }

        Loader {
            width: parent.width
            active: pane.model.isCalm
            visible: active
            sourceComponent: DiagnosisCalm {
                model: pane.model
            }
        }

        Loader {
            width: parent.width
            active: pane.model.hasFindings
            visible: active
            focus: active
            sourceComponent: DiagnosisFindings {
                model: pane.model
                hasKeys: pane.hasKeys
                onRevealed: item => area.reveal(item)
            }
        }
    }
}
