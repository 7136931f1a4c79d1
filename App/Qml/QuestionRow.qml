pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One program in a question, beneath the heading of its list if it is the first, above the count of what is not
// shown if it is the last.
Column {
    id: row

    required property string name
    required property string line
    required property string amount
    required property bool hasMark
    required property int tone
    required property string word
    required property string spoken
    required property string heading
    required property string more
    required property string iconApp
    required property string iconSymbol

    Label {
        width: row.width
        visible: row.heading !== ""
        topPadding: 16 + lead
        bottomPadding: 4 - lead
        text: row.heading
        color: Tokens.text2
        font: Tokens.listHead
        wrapMode: Text.Wrap
        Accessible.role: Accessible.Heading
    }

    Rectangle {
        visible: row.heading === ""
        width: row.width
        height: 1
        color: Tokens.tolvaneSeparator
    }

    Item {
        width: row.width
        implicitHeight: Math.max(44, words.height + 12)

        AppIcon {
            id: picture

            anchors.left: parent.left
            anchors.verticalCenter: parent.verticalCenter
            app: row.iconApp
            symbol: row.iconSymbol
            size: 22 * Tokens.grow
        }

        Column {
            id: words

            anchors.left: picture.right
            anchors.right: edge.left
            anchors.leftMargin: 10
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter

            Label {
                width: parent.width
                text: row.name
                font: Tokens.tolvaneLabel
                wrapMode: Text.Wrap
            }

            Label {
                width: parent.width
                text: row.line
                color: Tokens.text2
                font: Tokens.tolvaneCaption
                wrapMode: Text.Wrap
            }
        }

        Item {
            id: edge

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            implicitWidth: row.hasMark ? mark.implicitWidth : Math.ceil(figure.implicitWidth)
            implicitHeight: row.hasMark ? mark.implicitHeight : figure.implicitHeight

            VerdictMark {
                id: mark

                visible: row.hasMark
                tone: row.tone
                word: row.word
                spoken: row.spoken
            }

            Label {
                id: figure

                visible: !row.hasMark
                text: row.amount
                font: Tokens.amount
            }
        }
    }

    Label {
        width: row.width
        visible: row.more !== ""
        topPadding: 4 + lead
        text: row.more
        color: Tokens.text2
        font: Tokens.tolvaneCaption
    }
}
