pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One character of a figure.
Item {
    id: digit

    required property string text
    required property real cell
    required property font font
    required property color color
    required property bool isRolling
    readonly property bool isDigit: text >= "0" && text <= "9"
    property string former: ""
    property real share: 1

    implicitWidth: isDigit ? cell : shown.implicitWidth
    implicitHeight: shown.implicitHeight
    onTextChanged: {
        if (isRolling && !Tokens.isMotionReduced && shown.text !== "") {
            former = shown.text;
            roll.restart();
        }
        shown.text = text;
    }
    Component.onCompleted: shown.text = text

    TickDown {
        id: roll

        target: digit
        property: "share"
        from: 0
        to: 1
        onStopped: digit.former = ""
    }

    Text {
        id: shown

        anchors.horizontalCenter: parent.horizontalCenter
        y: (digit.share - 1) * digit.height / 2
        opacity: digit.share
        color: digit.color
        font: digit.font
        textFormat: Text.PlainText
        Accessible.ignored: true
    }

    Text {
        anchors.horizontalCenter: parent.horizontalCenter
        y: digit.share * digit.height / 2
        visible: digit.former !== ""
        opacity: 1 - digit.share
        text: digit.former
        color: digit.color
        font: digit.font
        textFormat: Text.PlainText
        Accessible.ignored: true
    }
}
