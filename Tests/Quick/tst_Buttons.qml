import QtQuick
import QtTest
import Ravik

TestCase {
    id: test

    name: "Buttons"
    when: windowShown
    width: 600
    height: 400
    visible: true

    Component {
        id: free

        FreeButton {
            text: "Free 1,846 MB"
            help: "Ends only what is safe to end, after you confirm"
        }
    }

    Component {
        id: plain

        PlainButton {
            text: "Quit…"
        }
    }

    Component {
        id: link

        TextLink {
            text: "Keep This One Running"
            symbol: "pin"
        }
    }

    SignalSpy {
        id: spy

        signalName: "triggered"
    }

    function make(component, properties) {
        const made = createTemporaryObject(component, test, properties);
        verify(made);
        spy.target = made;
        spy.clear();
        return made;
    }

    function cleanup() {
        desk.setDoubleClickTime(0);
        desk.setTextScale(1);
        desk.setReducedMotion(false);
        spy.target = null;
    }

    function test_pressedByPointer() {
        const button = make(free);
        mouseClick(button);
        compare(spy.count, 1);
    }

    function test_notPressedByAReleaseOutside() {
        const button = make(free);
        mousePress(button);
        mouseMove(button, button.width + 50, button.height + 50);
        mouseRelease(button, button.width + 50, button.height + 50);
        compare(spy.count, 0);
    }

    function test_pressedByKeys_data() {
        return [{
                "tag": "space",
                "key": Qt.Key_Space
            }, {
                "tag": "return",
                "key": Qt.Key_Return
            }, {
                "tag": "enter",
                "key": Qt.Key_Enter
            }];
    }

    function test_pressedByKeys(data) {
        const button = make(plain);
        button.forceActiveFocus(Qt.TabFocusReason);
        keyClick(data.key);
        compare(spy.count, 1);
    }

    function test_returnIsLeftToAQuestion() {
        const button = make(plain, {
                "isReturnTaken": false
            });
        button.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Return);
        compare(spy.count, 0);
        keyClick(Qt.Key_Space);
        compare(spy.count, 1);
    }

    function test_disabledCannotBePressed() {
        const button = make(free, {
                "enabled": false
            });
        mouseClick(button);
        keyClick(Qt.Key_Space);
        button.Accessible.pressAction();
        compare(spy.count, 0);
        verify(!button.hovered);
        compare(button.fill, Tokens.tolvaneData);
    }

    function test_assistiveTechnologyReadsAndPresses() {
        const button = make(free);
        compare(button.Accessible.role, Accessible.Button);
        compare(button.Accessible.name, "Free 1,846 MB");
        compare(button.Accessible.description, "Ends only what is safe to end, after you confirm");
        button.Accessible.pressAction();
        compare(spy.count, 1);
    }

    function test_aClickLeavesTheFocus() {
        const first = make(plain);
        first.forceActiveFocus(Qt.TabFocusReason);
        const second = make(plain, {
                "x": 200
            });
        mouseClick(second);
        verify(first.activeFocus);
    }

    function test_heights() {
        compare(make(free, {
                    "large": true
                }).height, 34);
        compare(make(free).height, 26);
        compare(make(plain).height, 26);
    }

    function test_growWithTheText() {
        const button = make(plain);
        const before = button.width;
        desk.setTextScale(2);
        verify(button.height >= 36);
        verify(button.width > before * 1.4);
    }

    function test_wrapRatherThanCut() {
        const button = make(free, {
                "text": "Arbeitsspeicherbereinigung starten und danach weiterarbeiten",
                "width": 160
            });
        verify(button.implicitHeight > 40);
    }

    function test_showsItsHelp() {
        const button = make(free);
        mouseMove(button, 5, 5);
        verify(button.tip);
        mouseMove(test, 500, 300);
        tryVerify(() => !button.tip);
    }

    function test_linkUnderlinesUnderThePointer() {
        const made = make(link);
        verify(!made.hovered);
        mouseMove(made, 5, 5);
        verify(made.hovered);
        mouseClick(made);
        compare(spy.count, 1);
        compare(made.Accessible.name, "Keep This One Running");
    }

    function test_theSecondOfTwoPressesDoesNotHitWhatCameUnderThePointer_data() {
        return [{
                "tag": "the first one went",
                "then": first => first.visible = false
            }, {
                "tag": "the first one cannot be pressed any more",
                "then": first => first.enabled = false
            }, {
                "tag": "the first one moved away",
                "then": first => first.x = 300
            }, {
                "tag": "the first one was destroyed",
                "then": first => first.destroy()
            }];
    }

    function test_theSecondOfTwoPressesDoesNotHitWhatCameUnderThePointer(data) {
        wait(200);
        desk.setDoubleClickTime(200);
        const next = make(plain, {
                "width": 200
            });
        const first = make(plain, {
                "width": 60
            });
        first.triggered.connect(() => data.then(first));
        mouseClick(first, 20, 10);
        wait(20);
        spy.target = next;
        spy.clear();
        mouseClick(next, 20, 10);
        mouseClick(next, 120, 10);
        compare(spy.count, 0);
        wait(220);
        mouseClick(next, 20, 10);
        compare(spy.count, 1);
    }

    function test_twoButtonsThatStayCanBePressedQuickly() {
        wait(200);
        desk.setDoubleClickTime(200);
        const first = make(plain);
        const second = make(plain, {
                "x": 200
            });
        mouseClick(first);
        mouseClick(second);
        compare(spy.count, 1);
        spy.target = first;
        spy.clear();
        mouseClick(first);
        mouseClick(first);
        compare(spy.count, 2);
    }
}
