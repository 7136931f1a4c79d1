pragma ComponentBehavior: Bound

import QtQuick

Window {
    width: 960
    height: 640
    minimumWidth: 820
    title: qsTr("Ravik")
}
