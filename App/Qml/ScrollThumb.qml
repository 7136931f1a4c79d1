pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The thin thumb at the edge of a scrolling area.
Rectangle {
    id: thumb

    required property Flickable area
    /// 0 where nothing is left to scroll to.
    required property real farthest
    /// To this place of the content.
    signal moved(real to)

    readonly property real track: area.height - 2 * 3 - height

    anchors.right: parent.right
    anchors.rightMargin: 3
    y: 3 + (farthest > 0 ? area.contentY / farthest * track : 0)
    width: 4
    height: Math.max(24, area.visibleArea.heightRatio * (area.height - 6))
    radius: 2
    visible: farthest > 0
    color: drag.pressed || drag.containsMouse ? Tokens.text3 : Tokens.tolvaneData
    Accessible.ignored: true

    MouseArea {
        id: drag

        property real grip: 0

        anchors.fill: parent
        anchors.leftMargin: -6
        anchors.rightMargin: -3
        hoverEnabled: true
        preventStealing: true
        onPressed: mouse => grip = mouse.y
        onPositionChanged: mouse => {
            if (pressed && thumb.track > 0)
                thumb.moved((thumb.y + mouse.y - grip - 3) / thumb.track * thumb.farthest);
        }
    }
}
