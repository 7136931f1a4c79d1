pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// What the Autopilot would do, for one click each.
Item {
    id: suggestions

    required property PanelView model

    implicitHeight: list.height

    Rectangle {
        width: parent.width
        height: 1
        color: Tokens.tolvaneSeparator
    }

    Column {
        id: list

        width: parent.width
        topPadding: 10
        bottomPadding: 10
        spacing: 8

        Label {
            width: parent.width
            text: suggestions.model.suggestionsTitle
            color: Tokens.text2
            font: Tokens.listHead
            Accessible.role: Accessible.Heading
        }

        Repeater {
            model: suggestions.model.suggestions

            delegate: PanelSuggestion {
                panel: suggestions.model
                width: list.width
            }
        }
    }
}
