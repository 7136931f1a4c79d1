pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One sentence, and a button to be done with it.
Window {
    id: window

    required property NoticeView model
    readonly property WindowRoom room: WindowRoom {
        window: window
    }

    flags: Qt.Dialog
    width: Math.min(440 * Tokens.grow, room.width - 48)
    height: words.height + 40
    color: Tokens.window
    title: model.title

    Column {
        id: words

        x: 20
        y: 20
        width: parent.width - 40
        spacing: 16
        LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
        LayoutMirroring.childrenInherit: true

        Label {
            width: parent.width
            text: window.model.title
            font: Tokens.tolvaneHeadline
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }

        Label {
            width: parent.width
            text: window.model.message
            color: Tokens.text2
            wrapMode: Text.Wrap
        }

        AmberButton {
            anchors.right: parent.right
            text: window.model.button
            large: true
            width: Math.max(104, implicitWidth)
            focus: true
            Keys.onEscapePressed: window.model.dismissed()
            onTriggered: window.model.dismissed()
        }
    }
}
