pragma ComponentBehavior: Bound

import QtQuick
import Ravik

Window {
    id: gallery

    width: 900
    height: page.implicitHeight + 48
    color: Tokens.window
    LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
    LayoutMirroring.childrenInherit: true

    Column {
        id: page

        x: 24
        y: 24
        width: parent.width - 48
        spacing: 16

        Hero {
            width: parent.width
            value: "4.6"
            unit: "GB"
            spoken: "4.6 GB"
            label: "you can free"
            line: "Only what is safe. Quit Firefox yourself for the rest."

            FreeButton {
                text: "Free 1,846 MB"
                help: "Ends only what is safe to end, after you confirm"
                large: true
            }
        }

        FlowLayout {
            width: parent.width
            spacing: 12
            lineSpacing: 8
            isMirrored: gallery.LayoutMirroring.enabled

            FreeButton {
                text: "Freeing…"
                help: ""
                busy: true
                enabled: false
            }

            FreeButton {
                text: "Nothing to free"
                help: ""
                enabled: false
                large: true
            }

            AmberButton {
                text: "Cancel"
            }

            PlainButton {
                text: "End 9…"
            }

            PlainButton {
                text: "Quit…"
                focus: true
            }

            PlainButton {
                text: "End all"
                tinted: true
                large: true
            }

            PlainButton {
                text: "Off"
                enabled: false
            }

            PlainButton {
                text: "Not this"
                flat: true
            }

            PlainButton {
                text: "Check again"
                symbol: "arrow.clockwise"
            }

            TextLink {
                text: "+ 3 more in Ravik"
            }

            TextLink {
                text: "Keep This One Running"
                symbol: "pin"
                color: Tokens.text
            }

            InfoButton {
                spoken: "More information"
                help: "More about this"
            }
        }

        FlowLayout {
            width: parent.width
            spacing: 20
            lineSpacing: 8
            isMirrored: gallery.LayoutMirroring.enabled

            VerdictMark {
                tone: Tone.Safe
                word: "safe"
                spoken: ""
            }

            VerdictMark {
                tone: Tone.Caution
                word: "asks first"
                spoken: ""
            }

            VerdictMark {
                tone: Tone.Never
                word: "left alone"
                spoken: ""
            }

            VerdictMark {
                tone: Tone.Advice
                word: "tip"
                spoken: ""
            }

            ModePicker {
                options: ["Cards", "Map"]
                selection: 0
                spoken: "View"
            }

            Readout {
                value: "30"
                unit: "%"
                spoken: "30 %"
                size: 22
            }

            Readout {
                value: "—"
                unit: ""
                spoken: ""
                size: 22
            }
        }

        SectionHeading {
            width: parent.width
            text: "Safe to end"
            note: "3 of them"
        }

        Card {
            width: parent.width

            Label {
                width: parent.width
                text: "Hidden browser window"
                font: Tokens.tolvaneLabel
            }

            Label {
                width: parent.width
                text: "A tool opened it 7 h ago. It can block your own browser, and it goes on doing so until somebody ends it or the computer is started again, which is said here to see lines wrap."
                font: Tokens.tolvaneCallout
                color: Tokens.text2
                wrapMode: Text.Wrap
            }

            TreeView {
                width: parent.width
                model: ListModel {
                    ListElement {
                        depth: 0
                        label: "node server.js"
                        mb: "486 MB"
                    }
                    ListElement {
                        depth: 1
                        label: "esbuild --service"
                        mb: "26 MB"
                    }
                }
            }
        }

        FlowLayout {
            width: parent.width
            spacing: 10
            lineSpacing: 10

            Repeater {
                model: ["airplane", "arrow.clockwise", "arrow.down.doc", "arrow.uturn.backward", "bell", "bell.slash", "checkmark", "checkmark.circle", "checkmark.circle.fill", "checkmark.seal", "chevron.down", "chevron.left.forwardslash.chevron.right", "chevron.right", "clock", "cylinder.split.1x2", "doc", "exclamationmark.circle", "exclamationmark.triangle", "folder", "gauge.low", "gearshape", "globe", "info.circle", "internaldrive", "keyboard", "list.bullet.rectangle", "magnifyingglass", "memorychip", "memorychip.fill", "minus", "pause", "person.2", "pin", "pin.slash", "play", "spinner", "square", "square.and.arrow.up", "stethoscope", "terminal", "trash", "xmark"]

                delegate: Symbol {
                    required property string modelData

                    name: modelData
                    color: Tokens.text
                    size: 32
                }
            }
        }
    }
}
