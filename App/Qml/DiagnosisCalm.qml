pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// Nothing to free: that it is so, and what the memory holds.
Column {
    id: calm

    required property DiagnosisView model

    spacing: 20

    Item {
        width: parent.width
        implicitHeight: words.height

        Symbol {
            id: mark

            anchors.left: parent.left
            y: 4
            name: calm.model.calmSymbol
            color: Tokens.tolvaneSafe
            size: 28 * Tokens.grow
        }

        Column {
            id: words

            anchors.left: mark.right
            anchors.leftMargin: 12
            anchors.right: parent.right
            spacing: 2

            Label {
                width: parent.width
                text: calm.model.calmTitle
                font: Tokens.tolvaneHeadline
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Heading
            }

            Label {
                width: parent.width
                text: calm.model.calmLine
                color: Tokens.text2
                font: Tokens.tolvaneCallout
                wrapMode: Text.Wrap
            }
        }
    }

    Card {
        width: parent.width
        spacing: 12

        MemoryBar {
            width: parent.width
            thickness: 18
            picture: calm.model.calmPicture
            surface: Tokens.tolvaneContent
            iconSize: 12
            isMirrored: LayoutMirroring.enabled
            Accessible.role: Accessible.Chart
            Accessible.name: picture.spoken
        }

        ChartLegend {
            width: parent.width
            items: calm.model.calmPicture.legend
        }
    }
}
