pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// What came of one action. It arrives gently.
Item {
    id: row

    required property int index
    required property string iconApp
    required property string iconSymbol
    required property string name
    required property string line
    required property string symbol
    required property bool isWell
    required property string spoken
    readonly property color ink: isWell ? Tokens.tolvaneSafe : Tokens.tolvaneCaution

    implicitHeight: Math.max(60, words.height + 24)
    opacity: 0
    Component.onCompleted: opacity = 1
    Accessible.role: Accessible.StaticText
    Accessible.name: spoken

    Behavior on opacity {
        ResultIn {
        }
    }

    Rectangle {
        visible: row.index > 0
        anchors.right: parent.right
        width: parent.width - words.x
        height: 1
        color: Tokens.tolvaneSeparator
    }

    AppIcon {
        id: icon

        anchors.left: parent.left
        anchors.leftMargin: 16
        y: (row.height - height) / 2
        app: row.iconApp
        symbol: row.iconSymbol
        size: 28 * Tokens.grow
    }

    Column {
        id: words

        anchors.left: icon.right
        anchors.leftMargin: 12
        anchors.right: parent.right
        anchors.rightMargin: 16
        y: (row.height - height) / 2
        spacing: 1

        Label {
            width: parent.width
            text: row.name
            font: Tokens.tolvaneLabel
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }

        GlyphLine {
            width: parent.width
            symbol: row.symbol
            symbolColor: row.ink
            text: row.line
            color: row.ink
            font: Tokens.button
            isSpoken: false
        }
    }
}
