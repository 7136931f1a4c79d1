pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// Whom a finding is about, its verdict, and what is said of it.
Column {
    id: words

    required property CardRow card

    spacing: 1

    FlowLayout {
        width: parent.width
        spacing: 12
        isMirrored: LayoutMirroring.enabled

        FittedLabel {
            text: words.card.name
            font: Tokens.tolvaneLabel
            most: words.width
        }

        VerdictMark {
            visible: words.card.hasVerdict
            tone: words.card.tone
            word: words.card.verdict
            spoken: words.card.verdictSpoken
            Accessible.ignored: true
        }
    }

    Label {
        width: parent.width
        text: words.card.sentence
        color: Tokens.text2
        font: Tokens.tolvaneCallout
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }

    Label {
        width: parent.width
        visible: text !== ""
        text: words.card.instead
        color: Tokens.text2
        font: Tokens.tolvaneCallout
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}
