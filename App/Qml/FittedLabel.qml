pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// A text as wide as it is, but no wider than it may be: then it wraps.
Item {
    id: fitted

    required property string text
    required property font font
    /// The widest that it may be.
    required property real most

    implicitWidth: Math.min(Math.ceil(metrics.advanceWidth) + 1, most)
    implicitHeight: label.height

    TextMetrics {
        id: metrics

        text: fitted.text
        font: fitted.font
    }

    Label {
        id: label

        width: fitted.implicitWidth
        text: fitted.text
        font: fitted.font
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}
