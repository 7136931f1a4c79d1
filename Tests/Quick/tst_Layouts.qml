import QtQuick
import QtTest
import Ravik

TestCase {
    id: test

    name: "Layouts"
    when: windowShown
    width: 700
    height: 600
    visible: true

    Component {
        id: picker

        ModePicker {
            options: ["Cards", "Map", "List"]
            selection: 0
            spoken: "View"
            onPicked: index => selection = index
        }
    }

    Component {
        id: flow

        FlowLayout {
            width: 100
            spacing: 10
            lineSpacing: 5

            Repeater {
                model: 3

                delegate: Item {
                    implicitWidth: 40
                    implicitHeight: 20
                    height: 20
                }
            }
        }
    }

    Component {
        id: scroll

        ScrollArea {
            width: 200
            height: 100

            Repeater {
                model: 10

                delegate: PlainButton {
                    required property int index

                    objectName: "b" + index
                    text: "button " + index
                }
            }
        }
    }

    function make(component, properties) {
        const made = createTemporaryObject(component, test, properties);
        verify(made);
        waitForRendering(made, 500);
        return made;
    }

    function places(item) {
        return Array.from(item.children).filter(c => c.implicitWidth === 40).map(c => [c.x, c.y]);
    }

    function cleanup() {
        desk.setTextScale(1);
    }

    function test_flowWrapsWhereItsWidthIsUsedUp() {
        const made = make(flow);
        compare(places(made), [[0, 0], [50, 0], [0, 25]]);
        compare(made.implicitHeight, 45);
        made.width = 140;
        tryVerify(() => made.implicitHeight === 20);
        compare(made.implicitWidth, 140);
    }

    function test_flowStartsAtTheRightWhereMirrored() {
        compare(places(make(flow, {
                        "isMirrored": true
                    })), [[60, 0], [10, 0], [60, 25]]);
    }

    function test_arrowsChooseAnOption() {
        const made = make(picker);
        made.step(0);
        keyClick(Qt.Key_Right);
        compare(made.selection, 1);
        keyClick(Qt.Key_Right);
        keyClick(Qt.Key_Right);
        compare(made.selection, 2);
        keyClick(Qt.Key_Left);
        compare(made.selection, 1);
    }

    function test_arrowsFollowTheEyeWhereMirrored() {
        const made = make(picker);
        made.LayoutMirroring.enabled = true;
        made.step(0);
        keyClick(Qt.Key_Left);
        compare(made.selection, 1);
    }

    function test_pickerIs26High() {
        compare(make(picker).height, 26);
    }

    function test_aClickChoosesAnOption() {
        const made = make(picker);
        mouseClick(made, made.width - 10, made.height / 2);
        compare(made.selection, 2);
    }

    function test_scrollsToWhatGetsTheKeyboard() {
        const made = make(scroll);
        compare(made.contentY, 0);
        findChild(made, "b1").forceActiveFocus(Qt.TabFocusReason);
        findChild(made, "b9").forceActiveFocus(Qt.TabFocusReason);
        verify(made.contentY > 100);
        findChild(made, "b0").forceActiveFocus(Qt.BacktabFocusReason);
        compare(made.contentY, 0);
    }

    function test_staysWhereItIsWhenTheKeyboardComesToTheWindow() {
        test.Window.window.contentItem.forceActiveFocus();
        const made = make(scroll);
        made.lastFocused = null;
        findChild(made, "b9").forceActiveFocus();
        compare(made.contentY, 0);
    }

    function test_scrollsByWheelAndKeysNoFartherThanItsContent() {
        const made = make(scroll);
        mouseWheel(made, 50, 50, 0, -120);
        compare(made.contentY, 48);
        made.scrollTo(100000);
        compare(made.contentY, made.contentHeight - 100);
        made.forceActiveFocus();
        keyClick(Qt.Key_Home);
        compare(made.contentY, 0);
    }
}
