pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One of a few views. A single stop for Tab; the arrow keys choose.
Item {
    id: picker

    required property list<string> options
    required property int selection
    /// What there is to choose: read, and shown when the pointer rests on it.
    required property string spoken

    property HelpTip tip: null

    signal picked(int index)

    function explain(shown: bool) {
        if (tip)
            tip.destroy();
        tip = shown && spoken !== "" ? tipMaker.createObject(picker) : null;
    }

    function step(by: int) {
        const mirrored = LayoutMirroring.enabled ? -by : by;
        const next = Math.max(0, Math.min(options.length - 1, selection + mirrored));
        if (next !== selection)
            picked(next);
        const chosen = row.itemAt(next);
        if (chosen)
            chosen.forceActiveFocus(Qt.TabFocusReason);
    }

    implicitWidth: row.implicitWidth + 4
    implicitHeight: row.implicitHeight + 4
    Keys.onLeftPressed: step(-1)
    Keys.onRightPressed: step(1)
    Accessible.role: Accessible.Grouping
    Accessible.name: spoken

    HoverHandler {
        onHoveredChanged: picker.explain(hovered)
    }

    Component {
        id: tipMaker

        HelpTip {
            target: picker
            text: picker.spoken
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: 8
        color: Tokens.select
    }

    FlowLayout {
        id: row

        function itemAt(index: int): Item {
            return buttons.itemAt(index);
        }

        x: 2
        y: 2
        width: parent.width - 4
        isMirrored: picker.LayoutMirroring.enabled

        Repeater {
            id: buttons

            model: picker.options

            delegate: ModeOption {
                required property int index
                required property string modelData

                text: modelData
                checked: index === picker.selection
                onTriggered: picker.picked(index)
            }
        }
    }
}
