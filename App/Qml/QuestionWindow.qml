pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// A question above all other windows. The bright button has the focus and means no; what the keys mean is the model's.
Window {
    id: window

    required property QuestionView model
    readonly property real padding: 20
    readonly property real highest: room.height - 48
    readonly property bool isRound: Tokens.isComposited()
    readonly property WindowRoom room: WindowRoom {
        window: window
    }

    flags: Qt.Dialog | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
    modality: Qt.ApplicationModal
    width: Math.min(440 * Tokens.grow, room.width - 48)
    height: Math.min(content.implicitHeight + 2 * padding, highest)
    color: isRound ? "transparent" : Tokens.panel
    title: model.title

    Rectangle {
        anchors.fill: parent
        radius: window.isRound ? Tokens.radiusPopup : 0
        color: Tokens.panel
        border.color: Tokens.edge
        Accessible.role: Accessible.AlertMessage
        Accessible.name: window.model.summary

        DragHandler {
            target: null
            onActiveChanged: if (active)
                window.startSystemMove()
        }
    }

    QuestionContent {
        id: content

        anchors.fill: parent
        anchors.margins: window.padding
        model: window.model
    }
}
