pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The ways out of the panel. They take lines of their own where the text is large.
Item {
    id: footer

    required property PanelView model
    readonly property real sides: 8
    readonly property real room: width - 2 * sides
    readonly property bool isBroken: open.implicitWidth + others.implicitWidth + 12 > room

    implicitHeight: others.y + others.height + sides

    Rectangle {
        width: parent.width
        height: 1
        color: Tokens.tolvaneSeparator
    }

    PlainButton {
        id: open

        anchors.left: parent.left
        anchors.leftMargin: footer.sides
        y: 1 + footer.sides
        flat: true
        text: footer.model.openLabel
        onTriggered: footer.model.openMain()
    }

    FlowLayout {
        id: others

        anchors.right: parent.right
        anchors.rightMargin: footer.sides
        y: footer.isBroken ? open.y + open.height : open.y
        width: footer.isBroken ? footer.room : implicitWidth
        isMirrored: LayoutMirroring.enabled

        PlainButton {
            width: Math.min(implicitWidth, footer.room)
            flat: true
            enabled: footer.model.canSendFeedback
            text: footer.model.feedback
            onTriggered: footer.model.sendFeedback()
        }

        PlainButton {
            flat: true
            text: footer.model.quitLabel
            help: footer.model.quitKey
            onTriggered: footer.model.quit()
        }
    }
}
