import QtQuick
import Ravik
import "." as Own  // Qt Quick has a TreeView too.

// One line of evidence: its label left, its value or the process tree right; below with large text.
Item {
    id: row

    required property string label
    required property string value
    required property bool isTree
    required property string more
    required property string spoken
    required property RecordModel lines
    readonly property bool isBroken: Tokens.isBig

    implicitHeight: Math.max(title.height, content.y + content.height)
    Accessible.role: Accessible.ListItem
    Accessible.name: spoken

    Label {
        id: title

        anchors.left: parent.left
        width: row.isBroken ? parent.width : 132
        text: row.label
        color: Tokens.text2
        font: Tokens.tolvaneCallout
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }

    Column {
        id: content

        anchors.left: row.isBroken ? parent.left : title.right
        anchors.leftMargin: row.isBroken ? 0 : 12
        anchors.right: parent.right
        y: row.isBroken ? title.height : 0

        Label {
            width: parent.width
            visible: text !== ""
            text: row.value
            font: Tokens.tolvaneCallout
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            Accessible.ignored: true
        }

        Loader {
            width: parent.width
            active: row.isTree
            visible: active
            sourceComponent: Own.TreeView {
                model: row.lines
                // Its lines belong to the row.
                Accessible.ignored: true
            }
        }

        Label {
            width: parent.width
            visible: text !== ""
            text: row.more
            color: Tokens.text2
            font: Tokens.tolvaneCaption
        }
    }
}
