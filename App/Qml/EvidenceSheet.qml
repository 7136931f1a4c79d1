import QtQuick
import Ravik

// A finding's evidence over the dimmed window. Escape and Close leave; the keyboard stays within.
FocusScope {
    id: sheet

    required property DiagnosisView model
    readonly property EvidenceView face: model.evidence
    readonly property real padding: 20

    focus: true
    Keys.onEscapePressed: model.closeSheet()
    Accessible.role: Accessible.Dialog
    Accessible.name: face.spoken

    Rectangle {
        anchors.fill: parent
        color: Tokens.shade
        Accessible.ignored: true
    }

    MouseArea {
        id: around

        property bool isMeant: true

        anchors.fill: parent
        hoverEnabled: true
        onPressed: mouse => isMeant = Presses.isMeant(around, Qt.point(mouse.x, mouse.y))
        onClicked: if (isMeant)
            sheet.model.closeSheet()
        onWheel: wheel => wheel.accepted = true
    }

    Rectangle {
        anchors.centerIn: parent
        width: Math.min(560 * Math.max(1, Tokens.grow * 0.7), parent.width - 48)
        height: Math.min(parent.height - 48, head.height + rows.contentHeight + foot.height)
        radius: Tokens.radiusPopup
        color: Tokens.panel
        border.color: Tokens.edge

        MouseArea {
            anchors.fill: parent
            hoverEnabled: true
            onWheel: wheel => wheel.accepted = true
        }

        EvidenceHead {
            id: head

            width: parent.width
            face: sheet.face
        }

        ScrollArea {
            id: rows

            anchors.top: head.bottom
            anchors.bottom: foot.top
            width: parent.width
            padding: sheet.padding
            bottomPadding: 12

            EvidenceGrid {
                width: parent.width
                face: sheet.face
            }
        }

        EvidenceFoot {
            id: foot

            anchors.bottom: parent.bottom
            width: parent.width
            focus: true
            model: sheet.model
            onPaged: by => rows.scrollTo(rows.contentY + by * rows.height * 0.9)
        }
    }
}
