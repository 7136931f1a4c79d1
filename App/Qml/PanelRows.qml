import QtQuick
import Ravik

// The findings that matter most, and what came of those that were fixed. Rows keep their order while the pointer is
// over them.
Column {
    id: list

    required property PanelView model

    HoverHandler {
        onHoveredChanged: list.model.holdRows(hovered)
    }

    Repeater {
        model: list.model.rows

        delegate: PanelRow {
            panel: list.model
            width: list.width
        }
    }

    Loader {
        width: parent.width
        active: list.model.more !== ""
        visible: active
        sourceComponent: Item {
            implicitHeight: more.height + 20

            Rectangle {
                width: parent.width
                height: 1
                color: Tokens.tolvaneSeparator
            }

            TextLink {
                id: more

                anchors.left: parent.left
                anchors.leftMargin: 34 * Tokens.grow
                y: 10
                width: Math.min(implicitWidth, parent.width - 34 * Tokens.grow)
                text: list.model.more
                onTriggered: list.model.openMain()
            }
        }
    }
}
