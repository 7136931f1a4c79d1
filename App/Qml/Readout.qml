pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// A large figure and its unit at half its size. The digits of a live one roll when they change.
Item {
    id: readout

    enum Phase {
        Live,
        Resolved,
        Pending
    }

    required property string value
    /// None where empty.
    required property string unit
    /// "4.6 GB".
    required property string spoken
    property int phase: Readout.Live
    /// Pixels at the usual size of text.
    property real size: 40
    property color color: Tokens.text
    readonly property real pixels: Math.round(size * Tokens.textScale)

    implicitWidth: figure.width + (unitLabel.visible ? 5 + unitLabel.implicitWidth : 0)
    implicitHeight: pixels
    baselineOffset: figure.y + figure.baselineOffset
    Accessible.role: Accessible.StaticText
    Accessible.name: spoken

    Figure {
        id: figure

        // Not mirrored itself, it is put to the side where a line begins.
        x: readout.LayoutMirroring.enabled ? readout.width - width : 0
        anchors.verticalCenter: parent.verticalCenter
        text: readout.value
        pixels: readout.pixels
        color: readout.color
        isRolling: readout.phase === Readout.Live
    }

    Text {
        id: unitLabel

        anchors.right: parent.right
        anchors.baseline: parent.top
        anchors.baselineOffset: readout.baselineOffset
        visible: readout.unit !== ""
        text: readout.unit
        color: readout.color
        textFormat: Text.PlainText
        font.family: Tokens.tolvaneBody.family
        font.pixelSize: Math.round(readout.pixels / 2)
        font.weight: Font.DemiBold
        Accessible.ignored: true
    }
}
