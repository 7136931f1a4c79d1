pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// A finding beside the map in one line.
Pressable {
    id: row

    required property string id
    required property string iconApp
    required property string iconSymbol
    required property string name
    required property bool hasVerdict
    required property int tone
    required property string verdict
    required property string verdictSpoken
    required spoken
    readonly property bool isBroken: Tokens.isBig

    insetRing: true
    implicitHeight: Math.max(28, icon.height + 8, name.height + (isBroken && mark.visible ? mark.height : 0) + 8)

    Rectangle {
        anchors.fill: parent
        color: row.hovered ? Tokens.hover : "transparent"
    }

    AppIcon {
        id: icon

        anchors.left: parent.left
        anchors.leftMargin: 16
        y: 4
        app: row.iconApp
        symbol: row.iconSymbol
        size: 20 * Tokens.grow
    }

    Label {
        id: name

        anchors.left: icon.right
        anchors.leftMargin: 10
        anchors.right: row.isBroken || !mark.visible ? parent.right : mark.left
        anchors.rightMargin: row.isBroken ? 16 : 12
        y: row.isBroken ? 4 : (row.height - height) / 2
        text: row.name
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }

    VerdictMark {
        id: mark

        anchors.right: row.isBroken ? undefined : parent.right
        anchors.left: row.isBroken ? name.left : undefined
        anchors.rightMargin: 16
        y: row.isBroken ? name.y + name.height : (row.height - height) / 2
        visible: row.hasVerdict
        tone: row.tone
        word: row.verdict
        spoken: row.verdictSpoken
        Accessible.ignored: true
    }
}
