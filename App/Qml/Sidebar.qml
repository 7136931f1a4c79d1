pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The list of screens; a rail of glyphs with large text.
Rectangle {
    id: sidebar

    required property MainView model
    /// Its keys are heard.
    required property bool isOpen
    readonly property bool isRail: Tokens.isBig

    implicitWidth: isRail ? 64 : 200
    color: Tokens.sidebar
    Accessible.role: Accessible.PageTabList
    Accessible.name: model.goTitle

    ScrollArea {
        anchors.fill: parent
        anchors.bottomMargin: foot.height
        padding: 8
        topPadding: 12

        Repeater {
            model: sidebar.model.rows

            delegate: SidebarRow {
                width: sidebar.width - 16
                isRail: sidebar.isRail
                isOpen: sidebar.isOpen
                onTriggered: sidebar.model.go(index)
            }
        }
    }

    Item {
        id: foot

        anchors.bottom: parent.bottom
        width: parent.width
        height: read.height + 16

        SidebarLink {
            id: read

            x: 8
            y: 4
            width: parent.width - 16
            isRail: sidebar.isRail
            symbol: "arrow.clockwise"
            label: sidebar.model.readLabel
            shortcut: sidebar.model.readKey
            onTriggered: sidebar.model.readNow()
        }
    }

    Rectangle {
        anchors.right: parent.right
        width: 1
        height: parent.height
        color: Tokens.tolvaneSeparator
    }
}
