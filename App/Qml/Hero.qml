pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The top of a screen: a figure, what it is, a line under it, and a control at the far side, or below where there is no
// room.
Item {
    id: hero

    required property string value
    required property string unit
    required property string spoken
    required property string label
    property int phase: Readout.Live
    /// None where empty.
    property string line: ""
    default property alias trailing: side.data
    readonly property bool isBroken: Tokens.isBig || width < words.wanted + 24 + side.width

    implicitWidth: words.wanted + (side.width > 0 ? 24 + side.width : 0)
    implicitHeight: isBroken && side.height > 0 ? words.height + 16 + side.height : Math.max(words.height, side.height)

    Column {
        id: words

        readonly property real wanted: Math.max(top.implicitWidth, lineLabel.visible ? Math.min(lineLabel.implicitWidth, 320) : 0)

        anchors.left: parent.left
        y: hero.isBroken ? 0 : (hero.height - height) / 2
        width: hero.isBroken ? hero.width : hero.width - side.width - 24
        spacing: 8

        ReadoutLine {
            id: top

            width: parent.width
            value: hero.value
            unit: hero.unit
            spoken: hero.spoken
            phase: hero.phase
            label: hero.label
        }

        Label {
            id: lineLabel

            visible: hero.line !== ""
            width: parent.width
            text: hero.line
            color: Tokens.text2
            font: Tokens.tolvaneCallout
            wrapMode: Text.Wrap
        }
    }

    Item {
        id: side

        x: hero.isBroken === hero.LayoutMirroring.enabled ? hero.width - width : 0
        y: hero.isBroken ? words.height + 16 : (hero.height - height) / 2
        width: childrenRect.width
        height: childrenRect.height
    }
}
