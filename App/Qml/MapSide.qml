import QtQuick
import Ravik

// The chosen part of the ring with its findings, and at the foot what belongs to no part.
Rectangle {
    id: side

    required property DiagnosisView screen
    readonly property MapView map: screen.map

    implicitHeight: about.implicitHeight + (also.visible ? also.implicitHeight + 24 : 0)
    radius: Tokens.radiusCard
    color: Tokens.tolvaneContent
    border.color: Tokens.tolvaneSeparator

    Loader {
        id: about

        width: parent.width
        sourceComponent: side.map.hasArc ? part : hint
    }

    MapAlso {
        id: also

        visible: side.map.alsoFound.count > 0
        width: parent.width
        anchors.bottom: parent.bottom
        screen: side.screen
    }

    Component {
        id: hint

        Label {
            topPadding: 16 + lead
            bottomPadding: 16 - lead
            leftPadding: 16
            rightPadding: 16
            text: side.map.hint
            color: Tokens.text2
            font: Tokens.tolvaneCallout
            wrapMode: Text.Wrap
        }
    }

    Component {
        id: part

        MapPart {
            screen: side.screen
        }
    }
}
