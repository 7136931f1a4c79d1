pragma ComponentBehavior: Bound

import QtQuick
import Ravik

// One screen in the sidebar, and its key.
SidebarLink {
    id: row

    required property int index
    /// Its key is heard.
    required property bool isOpen
    required badge
    required isSelected
    required spoken

    role: Accessible.PageTab
    Accessible.selected: isSelected

    Shortcut {
        enabled: row.isOpen
        sequence: row.shortcut
        onActivated: row.triggered()
    }
}
