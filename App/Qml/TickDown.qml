pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// For numbers that count down.
NumberAnimation {
    duration: Tokens.tickDownTime
    easing: Tokens.tickDown
}
