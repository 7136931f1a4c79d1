pragma ComponentBehavior: Bound

import QtQml
import QtQuick
import Ravik

// How the machine stands, in a glance, and the two or three fixes that matter. The middle scrolls between a fixed
// header and a fixed footer.
Window {
    id: panel

    required property PanelView model
    readonly property real highest: Math.min(640, room.height - 16)
    readonly property WindowRoom room: WindowRoom {
        window: panel
    }

    flags: Qt.Tool | Qt.FramelessWindowHint
    width: 360
    height: Math.ceil(Math.min(highest, header.height + body.contentHeight + footer.height))
    color: Tokens.panel
    title: model.word

    FocusScope {
        anchors.fill: parent
        focus: true
        LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
        LayoutMirroring.childrenInherit: true
        Keys.onEscapePressed: panel.close()
        Keys.onReturnPressed: event => {
            if (!event.isAutoRepeat && panel.model.canFree)
                panel.model.free();
        }
        Keys.onEnterPressed: event => {
            if (!event.isAutoRepeat && panel.model.canFree)
                panel.model.free();
        }

        PanelHeader {
            id: header

            width: parent.width
            model: panel.model
        }

        ScrollArea {
            id: body

            anchors.top: header.bottom
            anchors.bottom: footer.top
            width: parent.width
            padding: Tokens.panelPadding
            topPadding: 4
            bottomPadding: 12

            PanelBody {
                width: body.width - 2 * body.padding
                model: panel.model
            }
        }

        PanelFooter {
            id: footer

            anchors.bottom: parent.bottom
            width: parent.width
            model: panel.model
        }
    }

    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border.color: Tokens.edge
    }

    Shortcut {
        sequence: panel.model.quitKey
        onActivated: panel.model.quit()
    }

    Shortcut {
        sequence: panel.model.readKey
        onActivated: panel.model.readNow()
    }

    Instantiator {
        model: panel.model.screenKeys

        delegate: Shortcut {
            required property int index
            required property string modelData

            sequence: modelData
            onActivated: panel.model.openScreen(index)
        }
    }
}
