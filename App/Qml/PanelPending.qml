pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// Before the first reading.
Column {
    id: pending

    required property PanelView model

    topPadding: 20
    bottomPadding: 28
    spacing: 4

    Spinner {
        anchors.horizontalCenter: parent.horizontalCenter
        size: 20 * Tokens.grow
        color: Tokens.text2
    }

    Item {
        width: 1
        height: 6
    }

    Label {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        text: pending.model.title
        font: Tokens.tolvaneLabel
    }

    Label {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        text: pending.model.pendingLine
        color: Tokens.text2
        font: Tokens.tolvaneCaption
    }
}
