#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Core/Screens/DiskModel.h"

/// What the Disk screen shows of a DiskModel, as plain records.
namespace ravik::DiskScreen {

struct Hero {
    std::string value;
    std::string unit;
    std::string caption;
    std::string subtitle;
    friend bool operator==(const Hero&, const Hero&) = default;
};

struct Button {
    std::string label;
    bool isEnabled = true;
    friend bool operator==(const Button&, const Button&) = default;
};

enum class BodyKind { help, spinner, progress, warning, nothing, table };

struct Body {
    BodyKind kind = BodyKind::help;
    /// Beside the spinner, the bar, the triangle or the check mark; else empty.
    std::string text;
    /// Of the bar, 0 to 1.
    double fraction = 0;
    friend bool operator==(const Body&, const Body&) = default;
};

struct Row {
    std::string id;
    std::string size;  // "1.2", gigabytes
    std::string what;
    std::string note;
    std::string where;
    bool isChecked = false;
    friend bool operator==(const Row&, const Row&) = default;
};

struct Ring {
    double used = 0;  // 0 to 1
    std::string percent;
    std::string text;
    std::string accessibilityLabel;
    friend bool operator==(const Ring&, const Ring&) = default;
};

/// `diskFreeBytes` is the latest snapshot's.
Hero hero(const DiskModel& model, std::uint64_t diskFreeBytes);
/// The scan's button is the first, or the only one; the second moves to the Trash.
std::vector<Button> buttons(const DiskModel& model);
Body body(const DiskModel& model);
/// The table, in the order of the scan.
std::vector<Row> rows(const DiskModel& model);
/// In bytes. A capacity that is not above what is free counts as nothing used.
Ring ring(std::uint64_t free, std::uint64_t capacity);
/// Of the file system at "/"; 0 if unknown. Read once by the caller.
std::uint64_t capacityBytes();

}  // namespace ravik::DiskScreen
