pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The icon of an application, or the symbol that stands for a program without one.
Item {
    id: icon

    /// Empty: the symbol.
    required property url source
    required property string symbol
    /// At the usual size of text.
    required property real size

    implicitWidth: size * Tokens.grow
    implicitHeight: implicitWidth

    Image {
        id: image

        anchors.fill: parent
        source: icon.source
        sourceSize: Qt.size(width * Screen.devicePixelRatio, height * Screen.devicePixelRatio)
        fillMode: Image.PreserveAspectFit
        Accessible.ignored: true
    }

    Rectangle {
        anchors.fill: parent
        visible: image.status !== Image.Ready
        radius: width / 4.4
        color: Tokens.rest

        Symbol {
            anchors.centerIn: parent
            name: icon.symbol
            color: Tokens.text2
            size: Math.round(parent.width * 0.64)
        }
    }
}
