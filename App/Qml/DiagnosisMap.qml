import QtQuick
import Ravik

// The ring of the memory, and beside it, or below where there is no room, what is said of the chosen part.
FocusScope {
    id: map

    required property DiagnosisView model
    readonly property bool isBroken: Tokens.isBig || width < 480
    readonly property real ringWidth: isBroken ? width : Math.min(336, Math.max(272, width - 356))

    focus: true
    implicitHeight: Math.max(side.y + side.height, ring.height) + (outcomes.visible ? outcomes.height + 20 : 0)

    Rectangle {
        id: ring

        anchors.left: parent.left
        width: map.ringWidth
        height: map.isBroken ? drawing.height + 32 : Math.max(drawing.height + 32, side.implicitHeight)
        radius: Tokens.radiusCard
        color: Tokens.tolvaneContent
        border.color: Tokens.tolvaneSeparator

        MapRing {
            id: drawing

            anchors.centerIn: parent
            focus: true
            width: Math.min(304 * Math.max(1, Tokens.grow * 0.8), ring.width - 32)
            height: width
            screen: map.model
        }
    }

    MapSide {
        id: side

        anchors.left: map.isBroken ? parent.left : ring.right
        anchors.leftMargin: map.isBroken ? 0 : 20
        anchors.right: parent.right
        y: map.isBroken ? ring.height + 12 : 0
        height: map.isBroken ? implicitHeight : ring.height
        screen: map.model
    }

    ResolvedCards {
        id: outcomes

        width: parent.width
        y: Math.max(side.y + side.height, ring.height) + 20
        rows: map.model.map.resolved
    }
}
