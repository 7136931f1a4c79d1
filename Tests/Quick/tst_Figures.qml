import QtQuick
import QtTest
import Ravik

TestCase {
    id: test

    name: "Figures"
    when: windowShown
    width: 600
    height: 500
    visible: true

    Component {
        id: readout

        Readout {
            value: "4.6"
            unit: "GB"
            spoken: "4.6 GB"
        }
    }

    Component {
        id: hero

        Hero {
            value: "4.6"
            unit: "GB"
            spoken: "4.6 GB"
            label: "you can free"
            line: "Only what is safe."

            FreeButton {
                objectName: "side"
                text: "Free 1,846 MB"
                help: ""
                large: true
            }
        }
    }

    Component {
        id: mark

        VerdictMark {
            tone: Tone.Caution
            word: "busy"
            spoken: "Verdict: busy"
        }
    }

    Component {
        id: spinner

        Spinner {
        }
    }

    function make(component, properties) {
        const made = createTemporaryObject(component, test, properties);
        verify(made);
        return made;
    }

    function cleanup() {
        desk.setTextScale(1);
        desk.setReducedMotion(false);
    }

    function test_pendingShowsTheDashAndNoUnit() {
        const pending = make(readout, {
                "value": "—",
                "unit": ""
            });
        const live = make(readout);
        verify(pending.width < live.width);
        compare(pending.Accessible.role, Accessible.StaticText);
        compare(live.Accessible.name, "4.6 GB");
    }

    function test_readoutIs40PixelsHigh() {
        compare(make(readout).height, 40);
        desk.setTextScale(2);
        fuzzyCompare(make(readout).height, 80, 1);
    }

    function test_noDigitMovesItsNeighbours() {
        const made = make(readout, {
                "value": "1.1"
            });
        const before = made.width;
        made.value = "8.8";
        compare(made.width, before);
    }

    function test_digitsRollUnlessMotionIsReduced() {
        desk.setReducedMotion(true);
        const made = make(readout);
        made.value = "4.5";
        const digit = made.children[0].children[2];
        compare(digit.text, "5");
        compare(digit.share, 1);
        desk.setReducedMotion(false);
        made.value = "4.4";
        verify(digit.former === "5");
        tryCompare(digit, "former", "");
    }

    function test_verdictIsOneElement() {
        const made = make(mark);
        compare(made.Accessible.name, "Verdict: busy");
        compare(made.color, Tokens.tolvaneCaution);
        made.onAmber = true;
        compare(made.color, Tokens.tolvaneOnSignal);
    }

    function test_heroPutsItsControlAtTheFarSide() {
        const made = make(hero, {
                "width": 560
            });
        const side = findChild(made, "side");
        compare(side.mapToItem(made, side.width, 0).x, 560);
        made.width = 240;
        compare(side.mapToItem(made, 0, 0).x, 0);
        verify(side.mapToItem(made, 0, 0).y > 40);
    }

    function test_heroMirrors() {
        const made = make(hero, {
                "width": 560
            });
        made.LayoutMirroring.enabled = true;
        made.LayoutMirroring.childrenInherit = true;
        const side = findChild(made, "side");
        compare(side.mapToItem(made, 0, 0).x, 0);
    }

    function test_spinnerStandsStillWithReducedMotion() {
        desk.setReducedMotion(true);
        const made = make(spinner);
        wait(120);
        compare(made.rotation, 0);
        desk.setReducedMotion(false);
        tryVerify(() => made.rotation > 0);
    }
}
