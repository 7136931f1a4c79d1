pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// Ends what is safe to end. What it says and whether it can be pressed is decided by its model.
AmberButton {
    required help
}
