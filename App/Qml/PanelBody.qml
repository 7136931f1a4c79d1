import QtQuick
import Ravik

// The middle of the panel: one of its three states, then what the Autopilot and the week have to say.
Column {
    id: body

    required property PanelView model

    Loader {
        width: parent.width
        active: body.model.isPending
        visible: active
        sourceComponent: PanelPending {
            model: body.model
        }
    }

    Loader {
        width: parent.width
        active: body.model.isCalm
        visible: active
        sourceComponent: PanelCalm {
            model: body.model
        }
    }

    Loader {
        width: parent.width
        active: body.model.hasFindings
        visible: active
        sourceComponent: PanelFindings {
            model: body.model
        }
    }

    PanelAutopilot {
        width: parent.width
        model: body.model
    }
}
