pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// Whom the evidence is about.
Item {
    id: head

    required property EvidenceView face

    implicitHeight: Math.max(icon.visible ? icon.height : 0, words.height) + 36

    AppIcon {
        id: icon

        anchors.left: parent.left
        anchors.leftMargin: 20
        y: 20
        visible: !head.face.isGone
        app: head.face.iconApp
        symbol: head.face.iconSymbol
        size: 32 * Tokens.grow
    }

    Column {
        id: words

        anchors.left: icon.visible ? icon.right : parent.left
        anchors.leftMargin: icon.visible ? 12 : 20
        anchors.right: parent.right
        anchors.rightMargin: 20
        y: 20
        spacing: 2

        FlowLayout {
            width: parent.width
            spacing: 12
            isMirrored: LayoutMirroring.enabled

            FittedLabel {
                text: head.face.name
                font: Tokens.tolvaneHeadline
                most: words.width
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }

            VerdictMark {
                visible: !head.face.isGone
                tone: head.face.tone
                word: head.face.verdict
                spoken: head.face.verdictSpoken
            }
        }

        Label {
            width: parent.width
            text: head.face.sentence
            color: Tokens.text2
            font: Tokens.tolvaneCallout
            wrapMode: Text.Wrap
        }
    }
}
