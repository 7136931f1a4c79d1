pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One part of the ring: how much it holds, and what can be done about it.
Column {
    id: part

    required property DiagnosisView screen
    readonly property MapView map: screen.map

    Item {
        width: parent.width
        implicitHeight: Math.max(icon.height, words.height, share.height) + 32

        AppIcon {
            id: icon

            anchors.left: parent.left
            anchors.leftMargin: 16
            y: (parent.height - height) / 2
            visible: part.map.iconApp !== "" || part.map.iconSymbol !== ""
            app: part.map.iconApp
            symbol: part.map.iconSymbol
            size: 32 * Tokens.grow
        }

        Column {
            id: words

            anchors.left: icon.visible ? icon.right : parent.left
            anchors.leftMargin: icon.visible ? 12 : 16
            anchors.right: share.left
            anchors.rightMargin: 12
            y: (parent.height - height) / 2

            Label {
                width: parent.width
                text: part.map.name
                font: Tokens.tolvaneLabel
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Heading
            }

            Label {
                width: parent.width
                text: part.map.amount
                color: Tokens.text2
                wrapMode: Text.Wrap
            }
        }

        Label {
            id: share

            anchors.right: parent.right
            anchors.rightMargin: 16
            y: (parent.height - height) / 2
            text: part.map.share
            font: Tokens.tolvaneHeadline
        }
    }

    Repeater {
        model: part.map.findings

        delegate: MapFinding {
            width: part.width
            more: part.screen.moreHelp
            onOpened: part.screen.open(id)
            onRun: part.screen.run(id)
        }
    }

    Repeater {
        model: part.map.panelResolved

        delegate: Column {
            id: outcome

            required property int index
            required property string iconApp
            required property string iconSymbol
            required property string name
            required property string line
            required property string symbol
            required property bool isWell
            required property string spoken

            width: part.width

            Rectangle {
                width: parent.width
                height: 1
                color: Tokens.tolvaneSeparator
            }

            ResolvedRow {
                width: parent.width
                index: 0
                iconApp: outcome.iconApp
                iconSymbol: outcome.iconSymbol
                name: outcome.name
                line: outcome.line
                symbol: outcome.symbol
                isWell: outcome.isWell
                spoken: outcome.spoken
            }
        }
    }

    Label {
        width: parent.width
        visible: text !== ""
        leftPadding: 16
        rightPadding: 16
        bottomPadding: 16 - lead
        text: part.map.nothing
        color: Tokens.text2
        font: Tokens.tolvaneCallout
        wrapMode: Text.Wrap
    }
}
