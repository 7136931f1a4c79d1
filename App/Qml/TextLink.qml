pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// A text that can be pressed, with a glyph before it or without.
Pressable {
    id: link

    required property string text
    property string symbol: ""
    property color color: Tokens.tolvaneSignalText
    property font font: Tokens.tolvaneCallout
    readonly property real indent: glyph.visible ? glyph.width + 6 * Tokens.grow : 0

    spoken: text
    radius: 3
    implicitWidth: Math.ceil(label.implicitWidth) + indent
    implicitHeight: label.height

    Symbol {
        id: glyph

        visible: link.symbol !== ""
        anchors.left: parent.left
        y: (Tokens.line(link.font) - height) / 2
        name: link.symbol
        color: label.color
        size: 14 * Tokens.grow
    }

    Label {
        id: label

        anchors.left: parent.left
        anchors.leftMargin: link.indent
        width: link.width - link.indent
        text: link.text
        color: link.enabled ? link.color : Tokens.text3
        font.family: link.font.family
        font.pointSize: link.font.pointSize
        font.weight: link.font.weight
        font.underline: link.hovered
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}
