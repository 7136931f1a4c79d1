pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// A glyph and a text in the sidebar; the text is the tooltip of a rail.
Pressable {
    id: link

    required property bool isRail
    required property string symbol
    required property string label
    required property string shortcut
    property string badge: ""
    property bool isSelected: false

    spoken: label
    help: isRail ? label + "  " + shortcut : shortcut
    insetRing: true
    implicitHeight: Math.max(32, isRail ? 28 * Tokens.grow : words.height + 8)

    Rectangle {
        anchors.fill: parent
        radius: link.radius
        color: link.isSelected ? Tokens.select : link.hovered ? Tokens.hover : "transparent"
    }

    Symbol {
        id: glyph

        anchors.left: parent.left
        anchors.leftMargin: link.isRail ? (link.width - width) / 2 : 10
        anchors.verticalCenter: parent.verticalCenter
        name: link.symbol
        color: link.isSelected ? Tokens.tolvaneSignalText : Tokens.text2
        size: 16 * Tokens.grow
    }

    Label {
        id: words

        anchors.left: glyph.right
        anchors.leftMargin: 10
        anchors.right: count.visible ? count.left : parent.right
        anchors.rightMargin: 6
        y: (link.height - height) / 2
        visible: !link.isRail
        text: link.label
        font: link.isSelected ? Tokens.tolvaneLabel : Tokens.tolvaneBody
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }

    Label {
        id: count

        anchors.right: parent.right
        anchors.rightMargin: 10
        y: words.y + words.baselineOffset - baselineOffset
        visible: !link.isRail && text !== ""
        text: link.badge
        color: Tokens.text2
        font: Tokens.tolvaneCaption
        Accessible.ignored: true
    }
}
