import QtQuick
import Ravik

// What the Autopilot would do, what it has done, and what the week brought.
Column {
    id: autopilot

    required property PanelView model

    Loader {
        width: parent.width
        active: autopilot.model.suggestions.count > 0
        visible: active
        sourceComponent: PanelSuggestions {
            model: autopilot.model
        }
    }

    Repeater {
        model: autopilot.model.live

        delegate: PanelLive {
            panel: autopilot.model
            width: autopilot.width
        }
    }

    PanelNote {
        width: parent.width
        visible: text !== ""
        symbol: autopilot.model.autopilotSymbol
        text: autopilot.model.autopilotLine
    }

    PanelNote {
        width: parent.width
        visible: text !== ""
        symbol: autopilot.model.weekSymbol
        text: autopilot.model.week
    }
}
