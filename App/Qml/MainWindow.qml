pragma ComponentBehavior: Bound

import QtQuick
import Ravik

Window {
    id: window

    required property MainView model

    width: 960
    height: 640
    minimumWidth: 820
    title: qsTr("Ravik")
}
