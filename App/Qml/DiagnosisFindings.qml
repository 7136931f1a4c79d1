import QtQuick
import Ravik

// The hero, the memory before and after, and the cards or the map.
Column {
    id: screen

    required property DiagnosisView model
    required property bool hasKeys

    /// This has been chosen by key and is to be seen.
    signal revealed(Item item)

    spacing: 20

    Hero {
        width: parent.width
        value: screen.model.hero.value
        unit: screen.model.hero.unit
        spoken: screen.model.hero.spoken
        label: screen.model.hero.label
        line: screen.model.hero.line

        FreeButton {
            large: true
            text: screen.model.hero.freeLabel
            help: screen.model.hero.freeHelp
            enabled: screen.model.hero.canFree
            busy: screen.model.hero.isFreeing
            onTriggered: screen.model.free()
        }
    }

    BeforeAfterCard {
        width: parent.width
        model: screen.model.beforeAfter
    }

    ModePicker {
        anchors.left: parent.left
        options: screen.model.modes
        selection: screen.model.mode
        spoken: screen.model.modeHelp
        onPicked: index => screen.model.setMode(index)
    }

    Loader {
        width: parent.width
        active: !screen.model.isMap
        visible: active
        focus: active
        sourceComponent: DiagnosisCards {
            model: screen.model
            hasKeys: screen.hasKeys
            onRevealed: item => screen.revealed(item)
        }
    }

    Loader {
        width: parent.width
        active: screen.model.isMap
        visible: active
        focus: active
        sourceComponent: DiagnosisMap {
            model: screen.model
        }
    }
}
