pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// Whatever can be pressed: by pointer, by Space and Return, and by assistive technology. Draws its focus ring only.
// A click leaves the focus where it is.
Item {
    id: pressable

    /// What assistive technology reads.
    property string spoken: ""
    /// Shown when the pointer rests on it, and read as its description.
    property string help: ""
    property int role: Accessible.Button
    property real radius: Tokens.radiusControl
    property bool insetRing: false
    /// In a question Return has a meaning of its own.
    property bool isReturnTaken: true
    readonly property bool hovered: area.containsMouse && enabled
    readonly property bool pressed: (area.pressed && area.isMeant && area.containsMouse) || spaceHeld
    property bool spaceHeld: false

    property HelpTip tip: null

    signal triggered

    function explain(shown: bool) {
        if (tip)
            tip.destroy();
        tip = shown && help !== "" ? tipMaker.createObject(pressable) : null;
    }

    activeFocusOnTab: true
    onHoveredChanged: explain(hovered)
    onActiveFocusChanged: spaceHeld = false
    onEnabledChanged: spaceHeld = false
    Keys.onPressed: event => {
        if (event.isAutoRepeat)
            return;
        if (event.key === Qt.Key_Space) {
            spaceHeld = true;
            event.accepted = true;
        } else if (isReturnTaken && (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)) {
            event.accepted = true;
            triggered();
        }
    }
    Keys.onReleased: event => {
        if (event.key !== Qt.Key_Space || event.isAutoRepeat || !spaceHeld)
            return;
        spaceHeld = false;
        event.accepted = true;
        triggered();
    }
    Accessible.role: role
    Accessible.name: spoken
    Accessible.description: help
    Accessible.focusable: true
    Accessible.pressed: pressed
    Accessible.onPressAction: if (enabled)
        triggered()

    MouseArea {
        id: area

        property bool isMeant: true

        anchors.fill: parent
        hoverEnabled: true
        onPressed: mouse => isMeant = Presses.isMeant(pressable, Qt.point(mouse.x, mouse.y))
        onClicked: mouse => {
            if (!isMeant)
                return;
            Presses.note(pressable, Qt.point(mouse.x, mouse.y));
            pressable.triggered();
        }
    }

    FocusRing {
        z: 1
        visible: pressable.activeFocus
        radiusWithin: pressable.radius
        inset: pressable.insetRing
    }

    Component {
        id: tipMaker

        HelpTip {
            target: pressable
            text: pressable.help
        }
    }
}
