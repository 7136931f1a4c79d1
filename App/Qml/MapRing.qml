pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The ring with what is held in its middle. A click chooses a part, the arrow keys go round.
MemoryMap {
    id: ring

    required property DiagnosisView screen

    map: screen.map
    surface: Tokens.tolvaneContent
    iconSize: 16 * Tokens.grow
    activeFocusOnTab: true
    Accessible.role: Accessible.List
    Accessible.name: map.spoken
    Accessible.focusable: true
    Keys.onRightPressed: screen.selectNextArc()
    Keys.onDownPressed: screen.selectNextArc()
    Keys.onLeftPressed: screen.selectPreviousArc()
    Keys.onUpPressed: screen.selectPreviousArc()
    Keys.onEscapePressed: event => {
        event.accepted = map.hasArc;
        screen.deselectArc();
    }

    MouseArea {
        anchors.fill: parent
        onPressed: mouse => {
            const arc = ring.arcAt(mouse.x, mouse.y);
            if (arc === "")
                ring.screen.deselectArc();
            else
                ring.screen.selectArc(arc);
        }
    }

    HoverHandler {
        onHoveredChanged: ring.screen.setPointerOver(hovered)
    }

    Column {
        anchors.centerIn: parent
        width: ring.hole * 0.86
        spacing: 4

        Readout {
            anchors.horizontalCenter: parent.horizontalCenter
            size: 28 * Math.min(1, ring.hole / (180 * Tokens.grow))
            value: ring.map.value
            unit: ring.map.unit
            spoken: ring.map.value + " " + ring.map.unit
        }

        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: ring.map.caption
            color: Tokens.text2
            font: Tokens.tolvaneCaption
            wrapMode: Text.Wrap
        }
    }

    Repeater {
        model: ring.map.arcs

        delegate: Item {
            required property string id
            required property string spoken
            required property bool isSelected

            anchors.fill: parent
            Accessible.role: Accessible.ListItem
            Accessible.name: spoken
            Accessible.selectable: true
            Accessible.selected: isSelected
            Accessible.onPressAction: ring.screen.selectArc(id)
        }
    }
}
