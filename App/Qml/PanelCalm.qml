pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// Nothing to free.
Column {
    id: calm

    required property PanelView model

    topPadding: 4
    bottomPadding: 14

    GlyphLine {
        width: parent.width
        symbol: calm.model.calmSymbol
        symbolColor: Tokens.tolvaneSafe
        text: calm.model.title
        font: Tokens.tolvaneLabel
    }

    Item {
        width: 1
        height: 14
    }

    MemoryBar {
        width: parent.width
        thickness: 18
        picture: calm.model.picture
        surface: Tokens.panel
        isMirrored: LayoutMirroring.enabled
        Accessible.role: Accessible.Chart
        Accessible.name: picture.spoken
        iconSize: 12
    }

    Label {
        width: parent.width
        topPadding: lead + 7
        wrapMode: Text.Wrap
        text: calm.model.scaleLine
        color: Tokens.text2
        font: Tokens.tolvaneCaption
    }
}
