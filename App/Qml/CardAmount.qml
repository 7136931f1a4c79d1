pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// What comes back; or what is held, where that is known, and under it what will be done.
Column {
    id: column

    /// None where empty.
    required property string held
    required property string amount
    required property bool isMemory
    /// The widest that it may be.
    required property real most
    /// It stands at the far side of its row.
    property bool isAtEnd: false

    width: Math.min(Math.ceil(Math.max(figure.visible ? figure.implicitWidth : 0, words.implicitWidth)), most)

    Label {
        id: figure

        width: column.width
        visible: column.held !== ""
        text: column.held
        font: Tokens.amount
        horizontalAlignment: column.isAtEnd ? Text.AlignRight : Text.AlignLeft
        Accessible.ignored: true
    }

    Label {
        id: words

        width: column.width
        visible: column.amount !== ""
        text: column.amount
        color: column.isMemory ? Tokens.text : Tokens.text2
        font: column.isMemory ? Tokens.amount : Tokens.tolvaneCallout
        horizontalAlignment: column.isAtEnd ? Text.AlignRight : Text.AlignLeft
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}
