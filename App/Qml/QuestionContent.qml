pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// What a question says, and its two buttons. The lists scroll where the screen is too low for them.
Item {
    id: content

    required property QuestionView model
    readonly property real fixedHeight: head.height + foot.height

    implicitHeight: fixedHeight + rows.height
    LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
    LayoutMirroring.childrenInherit: true

    Column {
        id: head

        anchors.left: parent.left
        anchors.right: parent.right
        spacing: 4

        Label {
            width: parent.width
            text: content.model.title
            font: Tokens.tolvaneHeadline
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }

        Label {
            width: parent.width
            text: content.model.message
            color: Tokens.text2
            wrapMode: Text.Wrap
        }
    }

    ScrollArea {
        anchors.top: head.bottom
        anchors.bottom: foot.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: -padding
        anchors.rightMargin: -padding
        padding: 20
        bottomPadding: 0

        Column {
            id: rows

            width: parent.width

            Repeater {
                model: content.model.rows
                delegate: QuestionRow {
                    width: rows.width
                }
            }
        }
    }

    Column {
        id: foot

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom

        Item {
            width: parent.width
            height: 16
        }

        Rectangle {
            width: parent.width
            height: 1
            color: Tokens.tolvaneSeparator
        }

        Label {
            width: parent.width
            topPadding: 12 + lead
            bottomPadding: 16 - lead
            text: content.model.note
            color: Tokens.text2
            font: Tokens.tolvaneCaption
            wrapMode: Text.Wrap
        }

        Flow {
            width: parent.width
            spacing: 8
            layoutDirection: Qt.RightToLeft

            AmberButton {
                text: content.model.cancel
                large: true
                width: Math.max(104, implicitWidth)
                isReturnTaken: false
                focus: true
                KeyNavigation.tab: ahead
                KeyNavigation.backtab: ahead
                onTriggered: content.model.cancelled()
            }

            PlainButton {
                id: ahead

                text: content.model.verb
                help: content.model.chord
                tinted: true
                large: true
                isReturnTaken: false
                onTriggered: content.model.goAhead()
            }
        }
    }
}
