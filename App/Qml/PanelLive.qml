pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One thing the Autopilot has done, and the way back.
Item {
    id: row

    required property PanelView panel
    required property int index
    required property string id
    required property string word
    required property string target
    required property string timeLeft
    required property string undoHelp
    readonly property bool isBroken: Tokens.isBig

    implicitHeight: undo.y + undo.height + 10

    Rectangle {
        width: parent.width
        height: 1
        color: Tokens.tolvaneSeparator
    }

    Symbol {
        id: glyph

        anchors.left: parent.left
        y: 10 + (row.isBroken ? 0 : (undo.height - height) / 2)
        name: row.panel.autopilotSymbol
        color: Tokens.text2
        size: 16 * Tokens.grow
    }

    Label {
        id: word

        anchors.left: glyph.right
        anchors.leftMargin: 10
        y: 10 + (row.isBroken ? 0 : (undo.height - height) / 2)
        text: row.word
        font: Tokens.sectionHead
    }

    Label {
        id: target

        anchors.left: row.isBroken ? word.left : word.right
        anchors.leftMargin: row.isBroken ? 0 : 4
        anchors.right: row.isBroken ? parent.right : left.left
        anchors.rightMargin: row.isBroken ? 0 : 10
        y: row.isBroken ? word.y + word.height : word.y
        text: row.target
        font: Tokens.tolvaneCallout
        elide: row.isBroken ? Text.ElideNone : Text.ElideRight
        wrapMode: row.isBroken ? Text.Wrap : Text.NoWrap
    }

    Label {
        id: left

        anchors.right: row.isBroken ? undefined : undo.left
        anchors.rightMargin: 10
        anchors.left: row.isBroken ? word.left : undefined
        y: row.isBroken ? target.y + target.height : word.y + word.baselineOffset - baselineOffset
        text: row.timeLeft
        color: Tokens.text2
        font: Tokens.tolvaneCaption
    }

    PlainButton {
        id: undo

        anchors.right: parent.right
        y: row.isBroken ? left.y + left.height + 4 : 10
        text: row.panel.undoLabel
        help: row.undoHelp
        spoken: row.panel.undoLabel + " " + row.target
        onTriggered: row.panel.undo(row.id)
    }
}
