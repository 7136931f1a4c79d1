pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The head of a section, with a note at the far side or without.
Item {
    id: heading

    required property string text
    property string note: ""
    readonly property bool isBroken: width > 0 && width < title.implicitWidth + 12 + noteLabel.implicitWidth

    implicitWidth: title.implicitWidth + (note === "" ? 0 : 12 + noteLabel.implicitWidth)
    implicitHeight: isBroken && note !== "" ? title.height + noteLabel.height : title.height

    Label {
        id: title

        anchors.left: parent.left
        width: Math.min(Math.ceil(implicitWidth), heading.width)
        text: heading.text
        font: Tokens.sectionHead
        wrapMode: Text.Wrap
        Accessible.role: Accessible.Heading
    }

    Label {
        id: noteLabel

        visible: heading.note !== ""
        anchors.right: parent.right
        y: heading.isBroken ? title.height : 0
        width: Math.min(Math.ceil(implicitWidth), heading.width)
        text: heading.note
        color: Tokens.text2
        font: Tokens.tolvaneCallout
        wrapMode: Text.Wrap
    }
}
