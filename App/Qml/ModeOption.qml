pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One option of a picker.
Pressable {
    id: option

    required property string text
    required property bool checked

    spoken: text
    role: Accessible.RadioButton
    activeFocusOnTab: checked || activeFocus
    implicitWidth: Math.ceil(label.implicitWidth) + 24
    implicitHeight: Math.max(22, Math.ceil(label.implicitHeight + Tokens.base * 0.4))
    Accessible.checkable: true
    Accessible.checked: checked

    Rectangle {
        anchors.fill: parent
        radius: option.radius
        color: option.checked ? Tokens.picked : option.hovered ? Tokens.hover : "transparent"
    }

    Text {
        id: label

        anchors.centerIn: parent
        text: option.text
        color: !option.enabled ? Tokens.text3 : option.checked ? Tokens.text : Tokens.text2
        font: Tokens.button
        textFormat: Text.PlainText
        Accessible.ignored: true
    }
}
