pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The lines of a process tree. The model's roles: `depth`, `label`, `mb`.
Column {
    id: tree

    property alias model: lines.model

    Accessible.role: Accessible.List

    Repeater {
        id: lines

        delegate: TreeRow {
            width: tree.width
        }
    }
}
