pragma ComponentBehavior: Bound

import QtQuick

// A finding as a list gives it, and what the user may do with it.
Item {
    required property int index
    required property string id
    required property string iconApp
    required property string iconSymbol
    required property string name
    required property bool hasVerdict
    required property int tone
    required property string verdict
    required property string verdictSpoken
    required property string sentence
    required property string amount
    required property bool isMemory
    /// Beside an amount that is words; none where empty.
    required property string held
    required property string button
    required property string help
    required property bool canRun
    required property string instead
    required property bool opensDisk
    required property bool isSelected
    /// The way in for Tab.
    required property bool isStop
    required property bool isEnding
    required property string spoken
    required property bool isLeaving

    signal opened
    signal chosen
    signal run
}
