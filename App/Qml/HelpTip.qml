pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// A help text beside what the pointer rests on, within the window.
Item {
    id: tip

    required property Item target
    required property string text
    readonly property Item canvas: Window.contentItem
    readonly property int gap: 6

    function place() {
        const at = target.mapToItem(canvas, 0, target.height + gap);
        const below = at.y + bubble.height <= canvas.height;
        bubble.x = Math.max(gap, Math.min(at.x, canvas.width - bubble.width - gap));
        bubble.y = below ? at.y : at.y - target.height - 2 * gap - bubble.height;
        bubble.visible = true;
    }

    Timer {
        interval: 700
        running: true
        onTriggered: tip.place()
    }

    Rectangle {
        id: bubble

        parent: tip.canvas
        visible: false
        z: 1000
        width: Math.min(label.implicitWidth + 16, tip.canvas ? tip.canvas.width - 2 * tip.gap : 0)
        height: label.height + 8
        radius: Tokens.radiusControl
        color: Tokens.tolvaneContent
        border.color: Tokens.edge
        Accessible.ignored: true

        Label {
            id: label

            x: 8
            y: 4
            width: bubble.width - 16
            text: tip.text
            font: Tokens.tolvaneCaption
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
    }
}
