pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One finding of the chosen part of the ring.
CardRow {
    id: finding

    /// What its name opens.
    required property string more
    readonly property real most: column.width - (press.visible ? press.width + 12 : 0)

    implicitHeight: column.height + 28

    Rectangle {
        width: parent.width
        height: 1
        color: Tokens.tolvaneSeparator
    }

    Column {
        id: column

        x: 16
        y: 14
        width: parent.width - 32
        spacing: 6

        FlowLayout {
            width: parent.width
            spacing: 12
            isMirrored: LayoutMirroring.enabled

            TextLink {
                width: Math.min(implicitWidth, column.width)
                text: finding.name
                help: finding.more
                color: Tokens.text
                font: Tokens.tolvaneLabel
                onTriggered: finding.opened()
            }

            VerdictMark {
                visible: finding.hasVerdict
                tone: finding.tone
                word: finding.verdict
                spoken: finding.verdictSpoken
            }
        }

        Label {
            width: parent.width
            text: finding.sentence
            font: Tokens.tolvaneCallout
            wrapMode: Text.Wrap
        }

        Label {
            width: parent.width
            visible: text !== ""
            text: finding.instead
            color: Tokens.text2
            font: Tokens.tolvaneCallout
            wrapMode: Text.Wrap
        }

        Item {
            width: parent.width
            implicitHeight: Math.max(amount.height, press.visible ? press.height : 0)

            Label {
                id: amount

                anchors.left: parent.left
                y: (parent.height - height) / 2
                width: Math.min(Math.ceil(implicitWidth), finding.most)
                text: finding.amount
                color: finding.isMemory ? Tokens.text : Tokens.text2
                font: finding.isMemory ? Tokens.amount : Tokens.tolvaneCallout
                wrapMode: Text.Wrap
            }

            PlainButton {
                id: press

                anchors.right: parent.right
                y: (parent.height - height) / 2
                width: Math.max(84, implicitWidth)
                visible: finding.button !== ""
                enabled: finding.canRun
                text: finding.button
                help: finding.help
                spoken: finding.button + " " + finding.name
                onTriggered: finding.run()
            }
        }
    }
}
