pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The one primary button of a screen.
Pressable {
    id: button

    required property string text
    property bool large: false
    /// A spinner stands before the text.
    property bool busy: false
    readonly property color fill: !enabled ? Tokens.tolvaneData : pressed ? Tokens.signalPressed : hovered ? Tokens.tolvaneSignalFillHover : Tokens.tolvaneSignalFill
    readonly property real padding: large ? 18 : 12

    spoken: text
    implicitWidth: Math.ceil(content.implicitWidth) + 2 * padding
    implicitHeight: Math.max(large ? 34 : 26, Math.ceil(content.height + Tokens.base * (large ? 0.8 : 0.6)))

    Rectangle {
        anchors.fill: parent
        radius: button.radius
        color: button.fill
    }

    ButtonContent {
        id: content

        anchors.centerIn: parent
        available: button.width - 2 * button.padding
        text: button.text
        busy: button.busy
        color: button.enabled ? Tokens.tolvaneOnSignal : Tokens.onData
        font: button.large ? Tokens.tolvaneLabel : Tokens.sectionHead
    }
}
