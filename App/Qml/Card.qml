pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// A surface that holds what belongs together. Its children take its width and lie one under the other.
Rectangle {
    id: card

    default property alias content: column.data
    property real padding: 16
    property alias spacing: column.spacing

    implicitWidth: column.implicitWidth + 2 * padding
    implicitHeight: column.implicitHeight + 2 * padding
    radius: Tokens.radiusCard
    color: Tokens.tolvaneContent
    border.color: Tokens.tolvaneSeparator

    Column {
        id: column

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: card.padding
    }
}
