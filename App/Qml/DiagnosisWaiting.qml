pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// Before the first reading.
Item {
    id: waiting

    required property DiagnosisView model
    /// The height of the screen.
    required property real room

    implicitHeight: Math.max(words.height, room - 2 * Tokens.windowPadding)

    Column {
        id: words

        width: parent.width
        y: (waiting.height - height) * 0.4
        spacing: 6

        Spinner {
            anchors.horizontalCenter: parent.horizontalCenter
            size: 24 * Tokens.grow
            color: Tokens.text2
        }

        Label {
            width: parent.width
            topPadding: 8 + lead
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: waiting.model.waitingTitle
            font: Tokens.tolvaneHeadline
            Accessible.role: Accessible.Heading
        }

        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: waiting.model.waitingLine
            color: Tokens.text2
            font: Tokens.tolvaneCallout
        }
    }
}
