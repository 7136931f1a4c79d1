pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The line around what has the keyboard. Fills its parent, which tells its corners.
Rectangle {
    id: ring

    /// Of what it surrounds.
    property real radiusWithin: Tokens.radiusControl
    /// Inside the edge rather than around it, for what lies edge to edge with its neighbours.
    property bool inset: false
    readonly property real lineWidth: inset ? 1.5 : 2

    anchors.fill: parent
    anchors.margins: inset ? 0 : -4
    radius: inset ? radiusWithin : radiusWithin + 4
    color: "transparent"
    border.color: Tokens.tolvaneSignalText
    border.width: lineWidth
    border.pixelAligned: false
    Accessible.ignored: true
}
