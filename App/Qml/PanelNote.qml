pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// A line of small print under a separator.
Item {
    id: note

    required property string symbol
    required property string text

    implicitHeight: line.height + 20

    Rectangle {
        width: parent.width
        height: 1
        color: Tokens.tolvaneSeparator
    }

    GlyphLine {
        id: line

        y: 10
        width: parent.width
        symbol: note.symbol
        text: note.text
        color: Tokens.text2
    }
}
