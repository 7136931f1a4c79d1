pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// What came of actions, on one surface.
Rectangle {
    id: resolved

    required property RecordModel rows

    visible: rows.count > 0
    implicitHeight: list.height
    radius: Tokens.radiusCard
    color: Tokens.tolvaneContent
    border.color: Tokens.tolvaneSeparator

    Column {
        id: list

        width: parent.width

        Repeater {
            model: resolved.rows

            delegate: ResolvedRow {
                width: list.width
            }
        }
    }
}
