import QtQuick
import Ravik

// What comes back, or what is held and what will be done, and the button for it.
Item {
    id: action

    required property CardRow card
    required property real room
    required property bool isBroken
    readonly property real most: room - (press.visible ? 12 + press.width : 0)

    implicitWidth: isBroken ? room : Math.min(room, amount.width + (press.visible ? 12 + press.width : 0))
    implicitHeight: Math.max(amount.height, press.visible ? press.height : 0)

    Loader {
        id: amount

        anchors.left: action.isBroken ? parent.left : undefined
        anchors.right: action.isBroken ? undefined : press.visible ? press.left : parent.right
        anchors.rightMargin: press.visible ? 12 : 0
        anchors.verticalCenter: parent.verticalCenter
        sourceComponent: action.card.opensDisk ? link : words
    }

    PlainButton {
        id: press

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: Math.max(84, implicitWidth)
        visible: action.card.button !== ""
        enabled: action.card.canRun
        text: action.card.button
        help: action.card.help
        spoken: action.card.button + " " + action.card.name
        onTriggered: action.card.run()
    }

    Component {
        id: words

        CardAmount {
            held: action.card.held
            amount: action.card.amount
            isMemory: action.card.isMemory
            most: action.most
            isAtEnd: !action.isBroken
        }
    }

    Component {
        id: link

        TextLink {
            width: Math.min(implicitWidth, action.most)
            text: action.card.amount
            onTriggered: action.card.run()
        }
    }
}
