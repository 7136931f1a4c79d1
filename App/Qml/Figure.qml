pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// A number in cells of one width, so that nothing beside it moves when a digit changes. Changed digits roll down.
Row {
    id: figure

    required property string text
    required property real pixels
    required property color color
    property bool isRolling: false
    readonly property real cell: Tokens.digit(metrics.font)

    baselineOffset: metrics.ascent
    // Digits stand from left to right in every script.
    LayoutMirroring.enabled: false
    LayoutMirroring.childrenInherit: true
    Accessible.ignored: true

    FontMetrics {
        id: metrics

        font.family: Tokens.tolvaneBody.family
        font.pixelSize: figure.pixels
        font.weight: Font.DemiBold
        font.letterSpacing: -0.02 * figure.pixels
    }

    Repeater {
        model: figure.text.length

        delegate: RollingDigit {
            required property int index

            text: figure.text.charAt(index)
            cell: figure.cell
            font: metrics.font
            color: figure.color
            isRolling: figure.isRolling
        }
    }
}
