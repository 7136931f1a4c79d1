pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The findings in their sections, and under them what came of those that were acted on. Up and Down choose a card.
FocusScope {
    id: cards

    required property DiagnosisView model
    required property bool hasKeys

    signal revealed(Item item)

    focus: true
    implicitHeight: column.implicitHeight
    Keys.onUpPressed: model.selectPrevious()
    Keys.onDownPressed: model.selectNext()
    Keys.onEscapePressed: event => {
        event.accepted = model.hasSelection;
        model.deselect();
    }

    Shortcut {
        enabled: cards.hasKeys
        sequence: cards.model.runKey
        autoRepeat: false
        onActivated: cards.model.runSelected()
    }

    Column {
        id: column

        width: parent.width
        spacing: 20

        Column {
            width: parent.width
            spacing: 20
            visible: height > 0

            HoverHandler {
                onHoveredChanged: cards.model.setPointerOver(hovered)
            }

            Repeater {
                model: cards.model.sections

                delegate: CardSection {
                    required property SectionView modelData

                    width: column.width
                    model: modelData
                    screen: cards.model
                    hasFocus: cards.activeFocus
                    onRevealed: item => cards.revealed(item)
                }
            }
        }

        ResolvedCards {
            width: parent.width
            rows: cards.model.resolved
        }
    }
}
