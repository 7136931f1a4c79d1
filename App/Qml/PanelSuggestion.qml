pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One thing the Autopilot would do, why, and the two answers.
Item {
    id: row

    required property PanelView panel
    required property string id
    required property string iconApp
    required property string iconSymbol
    required property string title
    required property string reason
    required property string acceptHelp
    required property string dismissHelp
    readonly property bool isBroken: Tokens.isBig
    readonly property real indent: icon.width + 10

    implicitHeight: Math.max(icon.height, reasonLabel.y + reasonLabel.height)

    AppIcon {
        id: icon

        anchors.left: parent.left
        app: row.iconApp
        symbol: row.iconSymbol
        size: 24 * Tokens.grow
    }

    Label {
        id: titleLabel

        anchors.left: icon.right
        anchors.leftMargin: 10
        anchors.right: row.isBroken ? parent.right : dismiss.left
        anchors.rightMargin: row.isBroken ? 0 : 6
        y: row.isBroken ? 0 : (accept.height - height) / 2
        text: row.title
        font: Tokens.tolvaneLabel
        elide: row.isBroken ? Text.ElideNone : Text.ElideRight
        wrapMode: row.isBroken ? Text.Wrap : Text.NoWrap
    }

    PlainButton {
        id: dismiss

        anchors.right: row.isBroken ? undefined : accept.left
        anchors.rightMargin: 4
        anchors.left: row.isBroken ? titleLabel.left : undefined
        y: accept.y
        flat: true
        text: row.panel.dismissLabel
        help: row.dismissHelp
        spoken: row.panel.dismissLabel + ": " + row.title
        onTriggered: row.panel.dismiss(row.id)
    }

    PlainButton {
        id: accept

        anchors.right: parent.right
        y: row.isBroken ? titleLabel.height + 2 : 0
        text: row.panel.acceptLabel
        help: row.acceptHelp
        spoken: row.panel.acceptLabel + ": " + row.title
        onTriggered: row.panel.accept(row.id)
    }

    Label {
        id: reasonLabel

        anchors.left: icon.right
        anchors.leftMargin: 10
        anchors.right: parent.right
        y: accept.y + accept.height + 2
        text: row.reason
        color: Tokens.text2
        font: Tokens.tolvaneCaption
        wrapMode: Text.Wrap
    }
}
