pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One of two bars, with what it is and how much it holds.
Column {
    id: bar

    required property string heading
    required property string head
    required property MemoryPictureView picture

    spacing: 3

    Item {
        readonly property bool isBroken: width < Math.ceil(title.implicitWidth) + 12 + Math.ceil(amount.implicitWidth)

        width: parent.width
        implicitHeight: isBroken ? title.height + amount.height : title.height

        Label {
            id: title

            anchors.left: parent.left
            width: parent.isBroken ? parent.width : Math.ceil(implicitWidth)
            text: bar.heading
            font: Tokens.button
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }

        Label {
            id: amount

            anchors.right: parent.right
            y: parent.isBroken ? title.height : 0
            text: bar.head
            color: Tokens.text2
            font: Tokens.tolvaneCallout
        }
    }

    MemoryBar {
        width: parent.width
        picture: bar.picture
        surface: Tokens.tolvaneContent
        iconSize: 14
        isMirrored: LayoutMirroring.enabled
        Accessible.role: Accessible.Chart
        Accessible.name: picture.spoken
    }
}
