pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The ways out of the sheet. Tab goes from one to the other.
FocusScope {
    id: foot

    required property DiagnosisView model
    readonly property EvidenceView face: model.evidence
    readonly property bool isBroken: Tokens.isBig

    /// By so many pages, down or up.
    signal paged(real by)

    implicitHeight: close.y + close.height + 20
    Keys.onDownPressed: paged(0.1)
    Keys.onUpPressed: paged(-0.1)
    Keys.onPressed: event => {
        if (event.key !== Qt.Key_PageDown && event.key !== Qt.Key_PageUp)
            return;
        paged(event.key === Qt.Key_PageDown ? 1 : -1);
        event.accepted = true;
    }

    Rectangle {
        width: parent.width
        height: 1
        color: Tokens.tolvaneSeparator
    }

    Label {
        id: line

        x: 20
        y: 14
        width: parent.width - 40
        visible: foot.face.hasKeep
        text: foot.face.keepLine
        color: foot.face.hasKeepFailed ? Tokens.tolvaneCaution : Tokens.text2
        font: Tokens.tolvaneCaption
        wrapMode: Text.Wrap
        Accessible.role: foot.face.hasKeepFailed ? Accessible.AlertMessage : Accessible.StaticText
    }

    PlainButton {
        id: keep

        anchors.left: parent.left
        anchors.leftMargin: 20
        y: line.y + line.height + 10
        visible: foot.face.hasKeep
        enabled: foot.face.canKeep
        large: true
        symbol: "pin"
        text: foot.face.keepLabel
        width: Math.min(implicitWidth, parent.width - 40)
        help: foot.face.keepLine
        KeyNavigation.tab: close
        KeyNavigation.backtab: close
        onTriggered: foot.model.keep()
    }

    PlainButton {
        id: close

        readonly property Item other: foot.face.canKeep ? keep : close

        anchors.right: parent.right
        anchors.rightMargin: 20
        y: !foot.face.hasKeep ? 16 : foot.isBroken ? keep.y + keep.height + 8 : keep.y
        width: Math.max(84, implicitWidth)
        focus: true
        large: true
        text: foot.face.closeLabel
        KeyNavigation.tab: other
        KeyNavigation.backtab: other
        onTriggered: foot.model.closeSheet()
    }
}
