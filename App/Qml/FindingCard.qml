pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One finding as a row. A click on it, Space and Return open its evidence.
CardRow {
    id: row

    required property bool isLast
    required property bool hasFocus
    property real share: isLeaving ? 0 : 1

    signal gone
    signal revealed(Item item)

    function take() {
        if (!isSelected || !hasFocus)
            return;
        body.forceActiveFocus();
        revealed(row);
    }

    implicitHeight: body.implicitHeight * share
    opacity: share
    enabled: !isLeaving
    clip: share < 1
    // Made anew for a row that has gone meanwhile, it has nothing to show.
    Component.onCompleted: if (isLeaving)
        gone()
    onIsSelectedChanged: take()
    onShareChanged: if (share === 0 && isLeaving)
        gone()

    Behavior on share {
        RowEnding {
        }
    }

    CardBody {
        id: body

        width: parent.width
        card: row
    }

    Rectangle {
        visible: !row.isLast
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        width: parent.width - body.indent
        height: 1
        color: Tokens.tolvaneSeparator
    }
}
