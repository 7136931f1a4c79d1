import QtQuick
import Ravik

// What can be had back, in one figure; where it is; the one button; then the rows that matter.
Column {
    id: findings

    required property PanelView model

    ReadoutLine {
        width: parent.width
        value: findings.model.heroValue
        unit: findings.model.heroUnit
        spoken: findings.model.heroSpoken
        label: findings.model.heroCaption
    }

    Item {
        width: 1
        height: 14
    }

    MemoryBar {
        width: parent.width
        thickness: 20
        picture: findings.model.picture
        surface: Tokens.panel
        isMirrored: LayoutMirroring.enabled
        Accessible.role: Accessible.Chart
        Accessible.name: picture.spoken
        iconSize: 13
    }

    Label {
        width: parent.width
        topPadding: lead + 7
        bottomPadding: 8 - lead
        wrapMode: Text.Wrap
        text: findings.model.scaleLine
        color: Tokens.text2
        font: Tokens.tolvaneCaption
    }

    ChartLegend {
        width: parent.width
        items: findings.model.picture.legend
    }

    Item {
        width: 1
        height: 14
    }

    FreeButton {
        width: parent.width
        large: true
        text: findings.model.freeLabel
        help: findings.model.freeHelp
        enabled: findings.model.canFree
        busy: findings.model.isFreeing
        onTriggered: findings.model.free()
    }

    Item {
        width: 1
        height: 8
    }

    Loader {
        width: parent.width
        active: findings.model.result !== ""
        visible: active
        sourceComponent: GlyphLine {
            symbol: findings.model.calmSymbol
            symbolColor: Tokens.tolvaneSafe
            color: Tokens.tolvaneSafe
            text: findings.model.result
            font: Tokens.button
            isCentred: true
            opacity: 0
            Accessible.role: Accessible.AlertMessage
            Component.onCompleted: opacity = 1
            Behavior on opacity {
                ResultIn {
                }
            }
        }
    }

    Label {
        width: parent.width
        bottomPadding: 6 - lead
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        text: findings.model.gapLine
        color: Tokens.text2
        font: Tokens.tolvaneCaption
    }

    PanelRows {
        width: parent.width
        model: findings.model
    }
}
