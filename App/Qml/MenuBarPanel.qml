pragma ComponentBehavior: Bound

import QtQuick

Window {
    id: panel

    flags: Qt.Tool | Qt.FramelessWindowHint
    width: 360
    height: 120
    title: qsTr("Ravik")

    Text {
        anchors.centerIn: parent
        text: panel.title
    }
}
