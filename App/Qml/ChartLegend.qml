pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// What the marks of a picture stand for.
FlowLayout {
    id: legend

    required property RecordModel items

    spacing: 14
    lineSpacing: 3
    isMirrored: LayoutMirroring.enabled

    Repeater {
        model: legend.items

        delegate: Item {
            id: entry

            required property int mark
            required property string words
            readonly property real wanted: sign.width + 6 + Math.ceil(label.implicitWidth)

            implicitWidth: Math.min(wanted, legend.width)
            implicitHeight: label.height

            LegendMark {
                id: sign

                anchors.left: parent.left
                y: (Tokens.line(label.font) - height) / 2
                width: 10 * Tokens.grow
                height: width
                mark: entry.mark
            }

            Label {
                id: label

                anchors.left: sign.right
                anchors.leftMargin: 6
                anchors.right: parent.right
                text: entry.words
                color: Tokens.text2
                font: Tokens.tolvaneCaption
                wrapMode: Text.Wrap
            }
        }
    }
}
