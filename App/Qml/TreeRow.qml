pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One line of a process tree.
Item {
    id: row

    required property int depth
    required property string label
    required property string mb

    implicitHeight: name.height
    Accessible.role: Accessible.ListItem
    Accessible.name: label
    Accessible.description: mb

    Label {
        id: name

        anchors.left: parent.left
        anchors.leftMargin: 16 * row.depth * Tokens.grow
        anchors.right: amount.left
        anchors.rightMargin: 12
        text: row.label
        font: Tokens.tolvaneMono
        elide: Text.ElideRight
        Accessible.ignored: true
    }

    Label {
        id: amount

        anchors.right: parent.right
        text: row.mb
        color: Tokens.text2
        font: Tokens.tolvaneMono
        Accessible.ignored: true
    }
}
