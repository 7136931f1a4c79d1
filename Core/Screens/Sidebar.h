#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Host/Host.h"
#include "Core/Screens/Destination.h"
#include "Core/Watch/Snapshot.h"

namespace ravik {

/// One screen in the list on the left.
struct SidebarRow {
    Destination destination = Destination::diagnosis;
    std::string_view symbol;
    std::string_view title;
    std::optional<std::string> badge;
    bool isSelected = false;
    /// "Ctrl+1": selects the screen from anywhere.
    std::string shortcut;

    /// "Diagnosis, 7", for those who hear the screen.
    std::string spoken() const;

    friend bool operator==(const SidebarRow&, const SidebarRow&) = default;
};

/// The list of screens on the left of the main window: a plain record, compared by value.
struct Sidebar {
    static constexpr std::string_view settingsTitle = "Settings";
    static constexpr std::string_view settingsSymbol = "gearshape";

    std::vector<SidebarRow> rows;
    /// The link to the settings stands under the rows.
    bool hasSettings = false;

    Sidebar() = default;
    /// `screens`: those that exist, in their order.
    Sidebar(const std::vector<Destination>& screens, Destination selected, bool settingsExist, const Snapshot& snapshot,
            const Host& host);

    friend bool operator==(const Sidebar&, const Sidebar&) = default;
};

/// The menu "Go" beside its one item for each screen.
namespace GoMenu {
inline constexpr std::string_view title = "Go";
/// "Read the Mac Now", with the shortcut Nouns::refreshChord.
std::string readNow(const Host& host);
}  // namespace GoMenu

}  // namespace ravik
