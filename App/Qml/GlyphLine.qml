pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// A glyph and a text that wraps beside it, read as one.
Item {
    id: line

    required property string symbol
    required property string text
    property color symbolColor: Tokens.text2
    property color color: Tokens.text
    property font font: Tokens.tolvaneCaption
    property bool isCentred: false
    /// Not where what it stands in says the same.
    property bool isSpoken: true
    readonly property real size: 16 * Tokens.grow

    implicitHeight: Math.max(glyph.height, label.height)

    Symbol {
        id: glyph

        anchors.left: parent.left
        anchors.leftMargin: line.isCentred ? Math.max(0, (line.width - size - 8 - label.implicitWidth) / 2) : 0
        y: Math.max(0, (Tokens.line(line.font) - height) / 2)
        name: line.symbol
        color: line.symbolColor
        size: line.size
    }

    Label {
        id: label

        anchors.left: glyph.right
        anchors.leftMargin: 8
        anchors.right: parent.right
        wrapMode: Text.Wrap
        text: line.text
        color: line.color
        font: line.font
        Accessible.ignored: !line.isSpoken
    }
}
