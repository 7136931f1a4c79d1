pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// Findings that belong to no part of the ring, one line each. A click opens their evidence.
Column {
    id: also

    required property DiagnosisView screen

    bottomPadding: 8

    Rectangle {
        width: parent.width
        height: 1
        color: Tokens.tolvaneSeparator
    }

    Item {
        width: 1
        height: 14
    }

    SectionHeading {
        x: 16
        width: parent.width - 32
        text: also.screen.map.alsoFoundHeading
    }

    Item {
        width: 1
        height: 4
    }

    Repeater {
        model: also.screen.map.alsoFound

        delegate: MapAlsoRow {
            width: also.width
            onTriggered: also.screen.open(id)
        }
    }
}
