import QtQuick
import Ravik

// The program's name, and when the machine was last read.
Item {
    id: header

    required property PanelView model
    readonly property real sides: Tokens.panelPadding

    implicitHeight: Math.max(44, name.height + 16)

    Label {
        id: name

        anchors.left: parent.left
        anchors.leftMargin: header.sides
        anchors.verticalCenter: parent.verticalCenter
        text: header.model.word
        font: Tokens.tolvaneHeadline
        Accessible.role: Accessible.Heading
    }

    Label {
        id: checked

        anchors.right: parent.right
        anchors.rightMargin: header.sides
        anchors.left: name.right
        anchors.leftMargin: 12
        anchors.baseline: name.baseline
        horizontalAlignment: Text.AlignRight
        visible: text !== ""
        text: header.model.checked
        color: Tokens.text2
        font: Tokens.tolvaneCaption
        elide: Text.ElideRight
        Accessible.description: header.model.checkedHelp
    }

    MouseArea {
        id: area

        anchors.fill: checked
        hoverEnabled: true
        acceptedButtons: Qt.NoButton
    }

    Loader {
        active: area.containsMouse && checked.visible
        sourceComponent: HelpTip {
            target: checked
            text: header.model.checkedHelp
        }
    }
}
