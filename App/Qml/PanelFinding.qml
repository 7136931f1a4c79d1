import QtQuick
import Ravik

// A finding in two lines: who it is, its verdict and its amount; what it does, and the button. With large text each
// takes a line of its own.
Item {
    id: finding

    required property string name
    required property string sentence
    required property string amount
    required property int tone
    required property string verdict
    required property string verdictSpoken
    /// None where empty.
    required property string button
    required property string help
    required property bool isEnabled
    /// None where empty.
    required property string keep
    required property string keepSymbol
    /// That keeping it has failed; none where empty.
    required property string keepNote
    readonly property bool isBroken: Tokens.isBig

    signal run
    signal kept

    implicitHeight: (action.visible ? Math.max(words.y + words.height, action.y + action.height) : words.y + words.height)

    Label {
        id: nameLabel

        anchors.left: parent.left
        width: finding.isBroken ? parent.width : Math.min(Math.ceil(implicitWidth), parent.width - mark.width - 8 - (amountLabel.visible ? amountLabel.width + 12 : 0))
        text: finding.name
        font: Tokens.tolvaneLabel
        elide: finding.isBroken ? Text.ElideNone : Text.ElideRight
        wrapMode: finding.isBroken ? Text.Wrap : Text.NoWrap
    }

    VerdictMark {
        id: mark

        anchors.left: finding.isBroken ? parent.left : nameLabel.right
        anchors.leftMargin: finding.isBroken ? 0 : 8
        y: finding.isBroken ? nameLabel.height + 4 : nameLabel.baselineOffset - baselineOffset
        tone: finding.tone
        word: finding.verdict
        spoken: finding.verdictSpoken
    }

    Label {
        id: amountLabel

        anchors.right: parent.right
        y: finding.isBroken ? mark.y + mark.baselineOffset - baselineOffset : 0
        visible: text !== ""
        text: finding.amount
        font: Tokens.amount
    }

    Column {
        id: words

        anchors.left: parent.left
        y: (finding.isBroken ? mark.y + mark.height : nameLabel.height) + 3
        width: finding.isBroken || !action.visible ? parent.width : parent.width - action.width - 12
        spacing: 4

        Label {
            width: parent.width
            text: finding.sentence
            color: Tokens.text2
            font: Tokens.tolvaneCaption
            wrapMode: Text.Wrap
        }

        Loader {
            width: parent.width
            active: finding.keep !== ""
            visible: active
            sourceComponent: Item {
                implicitHeight: link.height

                TextLink {
                    id: link

                    anchors.left: parent.left
                    width: Math.min(implicitWidth, parent.width)
                    symbol: finding.keepSymbol
                    text: finding.keep
                    color: Tokens.text
                    font: Tokens.tolvaneCaption
                    onTriggered: finding.kept()
                }
            }
        }

        Loader {
            width: parent.width
            active: finding.keepNote !== ""
            visible: active
            sourceComponent: Label {
                text: finding.keepNote
                color: Tokens.tolvaneCaution
                font: Tokens.tolvaneCaption
                wrapMode: Text.Wrap
                Accessible.role: Accessible.AlertMessage
            }
        }
    }

    PlainButton {
        id: action

        anchors.right: parent.right
        y: finding.isBroken ? words.y + words.height + 6 : words.y
        width: Math.max(74, implicitWidth)
        visible: finding.button !== ""
        enabled: finding.isEnabled
        text: finding.button
        help: finding.help
        spoken: finding.button + " " + finding.name
        onTriggered: finding.run()
    }
}
