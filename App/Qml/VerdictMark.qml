pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// How a thing may be treated: a shape and a word, one element to assistive technology.
Item {
    id: mark

    /// One of Tone.
    required property int tone
    required property string word
    /// "Verdict: asks first".
    required property string spoken
    /// On amber, or on a row of increased prominence.
    property bool onAmber: false
    readonly property color color: {
        if (onAmber)
            return Tokens.tolvaneOnSignal;
        switch (tone) {
        case Tone.Safe:
            return Tokens.tolvaneSafe;
        case Tone.Caution:
            return Tokens.tolvaneCaution;
        case Tone.Never:
            return Tokens.tolvaneNever;
        default:
            return Tokens.text2;
        }
    }

    implicitWidth: shape.width + 6 * Tokens.grow + Math.ceil(label.implicitWidth)
    implicitHeight: label.implicitHeight
    baselineOffset: label.baselineOffset
    Accessible.role: Accessible.StaticText
    Accessible.name: spoken

    ToneShape {
        id: shape

        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        width: 10 * Tokens.grow
        height: width
        tone: mark.tone
        color: mark.color
    }

    Label {
        id: label

        anchors.right: parent.right
        text: mark.word
        color: mark.color
        font: Tokens.tolvaneVerdictWord
        Accessible.ignored: true
    }
}
