pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The cards of one section on one surface, under its heading.
Column {
    id: section

    required property SectionView model
    required property DiagnosisView screen
    /// One of the screen's cards has the keyboard.
    required property bool hasFocus

    signal revealed(Item item)

    visible: model.cards.count > 0
    spacing: 8

    SectionHeading {
        width: parent.width
        text: section.model.heading
    }

    Rectangle {
        width: parent.width
        implicitHeight: list.height
        radius: Tokens.radiusCard
        color: Tokens.tolvaneContent

        Column {
            id: list

            width: parent.width
            Accessible.role: Accessible.List
            Accessible.name: section.model.heading

            Repeater {
                model: section.model.cards

                delegate: FindingCard {
                    width: list.width
                    isLast: index === section.model.cards.count - 1
                    hasFocus: section.hasFocus
                    onOpened: section.screen.open(id)
                    onChosen: section.screen.select(id)
                    onRun: section.screen.run(id)
                    onGone: section.model.drop(id)
                    onRevealed: item => section.revealed(item)
                }
            }
        }

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: "transparent"
            border.color: Tokens.tolvaneSeparator
        }
    }
}
