import QtQuick
import Ravik

// One finding with its button, or what came of it.
Item {
    id: row

    required property PanelView panel
    required property int index
    required property string id
    required property string iconApp
    required property string iconSymbol
    required property string name
    required property string sentence
    required property string amount
    required property int tone
    required property string verdict
    required property string verdictSpoken
    required property string button
    required property string help
    required property bool isEnabled
    required property bool hasKeep
    required property string keepNote
    required property bool isResolved
    required property string resolvedSymbol
    required property bool isWell

    implicitHeight: Math.max(icon.height, content.height) + 20

    HoverHandler {
        onHoveredChanged: row.panel.pointAt(row.id, hovered)
    }

    Rectangle {
        visible: row.index > 0
        width: parent.width
        height: 1
        color: Tokens.tolvaneSeparator
    }

    AppIcon {
        id: icon

        anchors.left: parent.left
        y: 10
        app: row.iconApp
        symbol: row.iconSymbol
        size: 24 * Tokens.grow
    }

    Loader {
        id: content

        anchors.left: icon.right
        anchors.leftMargin: 10
        anchors.right: parent.right
        y: row.isResolved ? Math.max(10, (row.height - height) / 2) : 10
        sourceComponent: row.isResolved ? resolved : pending
    }

    Component {
        id: resolved

        GlyphLine {
            readonly property color ink: row.isWell ? Tokens.tolvaneSafe : Tokens.tolvaneCaution

            symbol: row.resolvedSymbol
            symbolColor: ink
            color: ink
            text: row.sentence
            font: Tokens.button
            opacity: 0
            Component.onCompleted: opacity = 1
            Behavior on opacity {
                ResultIn {
                }
            }
        }
    }

    Component {
        id: pending

        PanelFinding {
            name: row.name
            sentence: row.sentence
            amount: row.amount
            tone: row.tone
            verdict: row.verdict
            verdictSpoken: row.verdictSpoken
            button: row.button
            help: row.help
            isEnabled: row.isEnabled
            keep: row.hasKeep ? row.panel.keepLabel : ""
            keepSymbol: row.panel.keepSymbol
            keepNote: row.keepNote
            onRun: row.panel.run(row.id)
            onKept: row.panel.keep(row.id)
        }
    }
}
