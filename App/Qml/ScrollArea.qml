pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// Scrolls what is higher than it is: by wheel, touch, thumb, the page keys, and to whatever gets the keyboard.
Flickable {
    id: area

    default property alias content: inner.data
    /// On both sides; the thumb lies in it.
    property real padding: 16
    property real topPadding: 0
    property real bottomPadding: padding
    readonly property real farthest: Math.max(0, contentHeight - height)
    readonly property Item focused: Window.activeFocusItem
    property Item lastFocused: null

    function scrollTo(y: real) {
        contentY = Math.max(0, Math.min(farthest, y));
    }

    function reveal(item: Item) {
        for (let ancestor = item; ancestor !== inner; ancestor = ancestor.parent) {
            if (!ancestor)
                return;
        }
        const top = item.mapToItem(contentItem, 0, 0).y;
        const bottom = top + item.height;
        // What is higher than the area, such as a whole list, is never seen whole: its beginning does.
        const isTall = item.height + 16 > height;
        if (isTall && top < contentY + height && bottom > contentY)
            return;
        if (isTall || top - 8 < contentY)
            scrollTo(top - 8);
        else if (bottom + 8 > contentY + height)
            scrollTo(bottom + 8 - height);
    }

    // A window that opens or comes to the front stays where it is.
    onFocusedChanged: {
        if (focused && lastFocused)
            reveal(focused);
        lastFocused = focused;
    }
    onFarthestChanged: scrollTo(contentY)
    clip: true
    interactive: false
    boundsBehavior: Flickable.StopAtBounds
    contentWidth: width
    contentHeight: inner.implicitHeight + topPadding + bottomPadding
    Keys.onPressed: event => {
        const page = height * 0.9;
        const to = {
            [Qt.Key_PageUp]: contentY - page,
            [Qt.Key_PageDown]: contentY + page,
            [Qt.Key_Home]: 0,
            [Qt.Key_End]: farthest,
            [Qt.Key_Up]: contentY - 40,
            [Qt.Key_Down]: contentY + 40
        }[event.key];
        if (to === undefined)
            return;
        scrollTo(to);
        event.accepted = true;
    }

    Column {
        id: inner

        x: area.padding
        y: area.topPadding
        width: area.width - 2 * area.padding
    }

    WheelHandler {
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: event => area.scrollTo(area.contentY - (event.pixelDelta.y || event.angleDelta.y / 120 * 48))
    }

    DragHandler {
        property real start: 0

        target: null
        acceptedDevices: PointerDevice.TouchScreen
        xAxis.enabled: false
        onActiveChanged: start = area.contentY
        onTranslationChanged: if (active)
            area.scrollTo(start - translation.y)
    }

    ScrollThumb {
        parent: area
        area: area
        farthest: area.farthest
        onMoved: to => area.scrollTo(to)
    }
}
