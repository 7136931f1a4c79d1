pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// For a row that leaves.
NumberAnimation {
    duration: Tokens.rowEndingTime
    easing: Tokens.rowEnding
}
