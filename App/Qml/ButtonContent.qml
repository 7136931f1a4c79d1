pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// What stands in a button: a glyph or a spinner, and a text that wraps rather than being cut.
Item {
    id: content

    required property string text
    required property color color
    required property font font
    /// The widest that it may be.
    required property real available
    property string symbol: ""
    property bool busy: false
    readonly property real taken: lead.visible ? lead.width + 6 * Tokens.grow : 0

    implicitWidth: taken + Math.ceil(label.implicitWidth)
    implicitHeight: Math.max(label.height, lead.visible ? lead.height : 0)
    width: Math.min(implicitWidth, available)
    height: implicitHeight

    Spinner {
        id: lead

        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        visible: content.symbol !== "" || content.busy
        name: content.busy ? "spinner" : content.symbol
        running: content.busy
        color: content.color
    }

    Text {
        id: label

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: content.width - content.taken
        text: content.text
        color: content.color
        font: content.font
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignHCenter
        Accessible.ignored: true
    }
}
