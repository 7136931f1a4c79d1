pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The small round button that opens a help sheet.
Pressable {
    id: button

    radius: width / 2
    implicitWidth: 26 * Tokens.grow
    implicitHeight: implicitWidth

    Rectangle {
        anchors.fill: parent
        radius: button.radius
        color: button.pressed ? Tokens.select : button.hovered ? Tokens.hover : "transparent"
    }

    Symbol {
        anchors.centerIn: parent
        name: "info.circle"
        color: button.enabled ? Tokens.text2 : Tokens.text3
        size: 16 * Tokens.grow
    }
}
