pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The bordered button; `tinted` in amber text, `flat` without border and fill until the pointer is over it.
Pressable {
    id: button

    required property string text
    /// Before the text; none where empty.
    property string symbol: ""
    property bool tinted: false
    property bool flat: false
    property bool large: false
    readonly property color ink: !enabled ? Tokens.text3 : tinted ? Tokens.tolvaneSignalText : flat && !hovered ? Tokens.text2 : Tokens.text
    readonly property real padding: flat ? 8 : large ? 18 : 12

    spoken: text
    implicitWidth: Math.ceil(content.implicitWidth) + 2 * padding
    implicitHeight: Math.max(large ? 34 : 26, Math.ceil(content.height + Tokens.base * (large ? 0.8 : 0.6)))

    Rectangle {
        anchors.fill: parent
        radius: button.radius
        color: button.flat ? (button.hovered || button.pressed ? Tokens.hover : "transparent") : !button.enabled ? "transparent" : button.pressed ? Tokens.controlPressed : button.hovered ? Tokens.controlHover : Tokens.control
        border.width: button.flat ? 0 : 1
        border.color: button.enabled ? Tokens.controlBorder : Tokens.tolvaneSeparator
    }

    ButtonContent {
        id: content

        anchors.centerIn: parent
        available: button.width - 2 * button.padding
        text: button.text
        symbol: button.symbol
        color: button.ink
        font: button.flat ? Tokens.tolvaneCallout : button.large ? Tokens.amount : Tokens.button
    }
}
