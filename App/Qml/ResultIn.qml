pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// For a result that arrives.
NumberAnimation {
    duration: Tokens.resultInTime
    easing: Tokens.resultIn
}
