pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// A readout and what it is, on one baseline; the words below the figure where there is no room.
Item {
    id: line

    required property string value
    required property string unit
    required property string spoken
    required property string label
    property int phase: Readout.Live
    readonly property bool isBroken: width > 0 && width < implicitWidth

    implicitWidth: readout.width + 10 + Math.ceil(caption.implicitWidth)
    implicitHeight: isBroken ? caption.y + caption.height : readout.height

    Readout {
        id: readout

        anchors.left: parent.left
        value: line.value
        unit: line.unit
        spoken: line.spoken
        phase: line.phase
    }

    Label {
        id: caption

        anchors.left: parent.left
        anchors.leftMargin: line.isBroken ? 0 : readout.width + 10
        y: line.isBroken ? readout.height + 4 : readout.baselineOffset - baselineOffset
        width: line.isBroken ? line.width : Math.ceil(implicitWidth)
        text: line.label
        color: Tokens.text2
        font: Tokens.tolvaneCallout
        wrapMode: Text.Wrap
    }
}
