pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// What stands in a row: icon, words, and at the far side what comes back and the button; below with large text.
Pressable {
    id: body

    required property CardRow card
    readonly property real indent: 16 + icon.width + 12
    readonly property bool isBroken: Tokens.isBig

    spoken: card.spoken
    role: Accessible.ListItem
    radius: Tokens.radiusCard
    insetRing: true
    activeFocusOnTab: card.isStop || activeFocus
    implicitHeight: Math.max(60, words.height + (isBroken ? action.height + 8 : 0) + 24, isBroken ? 0 : action.height + 24)
    Accessible.selectable: true
    Accessible.selected: card.isSelected
    onTriggered: {
        card.chosen();
        card.opened();
    }
    onActiveFocusChanged: if (activeFocus && !card.isSelected)
        card.chosen()

    Rectangle {
        anchors.fill: parent
        radius: body.radius
        color: body.card.isSelected ? Tokens.select : body.hovered ? Tokens.hover : "transparent"
    }

    AppIcon {
        id: icon

        anchors.left: parent.left
        anchors.leftMargin: 16
        y: body.isBroken ? 14 : (body.height - height) / 2
        app: body.card.iconApp
        symbol: body.card.iconSymbol
        size: 28 * Tokens.grow
    }

    CardWords {
        id: words

        anchors.left: icon.right
        anchors.leftMargin: 12
        anchors.right: parent.right
        anchors.rightMargin: body.isBroken ? 16 : 32 + action.width
        y: body.isBroken ? 12 : (body.height - height) / 2
        card: body.card
    }

    CardAction {
        id: action

        anchors.right: parent.right
        anchors.rightMargin: 16
        y: body.isBroken ? words.y + words.height + 8 : (body.height - height) / 2
        room: body.isBroken ? body.width - body.indent - 16 : (body.width - body.indent) / 2
        isBroken: body.isBroken
        card: body.card
    }
}
