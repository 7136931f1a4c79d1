pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// Work is going on. Stands still with reduced motion.
Symbol {
    id: spinner

    property bool running: true

    name: "spinner"
    size: 14 * Tokens.grow
    Accessible.ignored: true

    NumberAnimation on rotation  {
        running: spinner.running && spinner.visible && !Tokens.isMotionReduced
        from: 0
        to: 360
        duration: 1000
        loops: Animation.Infinite
    }
}
