pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// The memory now and after, one bar under the other.
Card {
    id: card

    required property BeforeAfterView model

    spacing: 14

    BeforeAfterBar {
        width: parent.width
        heading: card.model.nowHeading
        head: card.model.nowHead
        picture: card.model.now
    }

    BeforeAfterBar {
        width: parent.width
        heading: card.model.afterHeading
        head: card.model.afterHead
        picture: card.model.after
    }

    ChartLegend {
        width: parent.width
        items: card.model.now.legend
    }
}
