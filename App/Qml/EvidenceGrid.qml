pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The evidence, label and value.
Column {
    id: grid

    required property EvidenceView face

    spacing: 8
    Accessible.role: Accessible.List
    Accessible.name: face.rowsSpoken

    Repeater {
        model: grid.face.isGone ? null : grid.face.rows

        delegate: EvidenceRow {
            width: grid.width
            lines: grid.face.tree
        }
    }
}
