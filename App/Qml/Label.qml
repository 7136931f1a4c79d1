pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// Text on the line heights of the interface: the leading is split above and below each line.
Text {
    id: label

    readonly property real lead: Tokens.lead(font)

    color: Tokens.text
    font: Tokens.tolvaneBody
    textFormat: Text.PlainText
    lineHeightMode: Text.FixedHeight
    lineHeight: Tokens.line(font)
    topPadding: lead
    bottomPadding: -lead
    horizontalAlignment: Text.AlignLeft
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
