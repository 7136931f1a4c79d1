pragma ComponentBehavior: Bound

import QtQuick
import Ravik

Window {
    id: panel

    required property PanelView model

    flags: Qt.Tool | Qt.FramelessWindowHint
    width: 360
    height: 120
    title: qsTr("Ravik")

    Text {
        anchors.centerIn: parent
        text: panel.title
    }
}
