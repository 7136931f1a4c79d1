#include "Core/Screens/DiskScreen.h"

#include <cmath>
#include <filesystem>

#include <fmt/format.h>

#include "Core/Wording/Fmt.h"

namespace ravik::DiskScreen {

namespace {

bool showsRows(const DiskModel& model) {
    return std::holds_alternative<DiskModel::Done>(model.phase()) && !model.items().empty();
}

}  // namespace

Hero hero(const DiskModel& model, std::uint64_t diskFreeBytes) {
    if (showsRows(model)) {
        std::uint64_t bytes = 0;
        for (const Reclaimable& row : model.items()) bytes += row.bytes;
        return {Fmt::gbByThousands(bytes), "GB", "you can free on disk",
                model.trashed().value_or("Tick what to move to the Trash. You can put it back.")};
    }
    return {fmt::format("{:.0f}", std::ldexp(static_cast<double>(diskFreeBytes), -30)), "GB", "free on your disk",
            model.trashed().value_or("A scan finds caches and old build folders you can delete.")};
}

std::vector<Button> buttons(const DiskModel& model) {
    const bool isIdle = std::holds_alternative<DiskModel::Idle>(model.phase());
    if (model.items().empty()) return {{isIdle ? "Scan" : "Scan again", !model.isScanning()}};
    return {{"Scan again", !model.isScanning()}, {"Move to Trash…", !model.checked().empty()}};
}

Body body(const DiskModel& model) {
    if (const auto* scanning = std::get_if<DiskModel::Scanning>(&model.phase())) {
        if (scanning->total == 0) return {BodyKind::spinner, "Looking for folders…", 0};
        return {BodyKind::progress, fmt::format("{} of {} folders", scanning->done, scanning->total),
                static_cast<double>(scanning->done) / scanning->total};
    }
    if (const auto* failed = std::get_if<DiskModel::Failed>(&model.phase())) {
        return {BodyKind::warning, failed->sentence, 0};
    }
    if (std::holds_alternative<DiskModel::Idle>(model.phase())) return {BodyKind::help, "", 0};
    if (model.items().empty()) {
        return {BodyKind::nothing, "No big caches and no old build folders to clear.", 0};
    }
    return {BodyKind::table, "", 0};
}

std::vector<Row> rows(const DiskModel& model) {
    std::vector<Row> rows;
    for (const Reclaimable& item : model.items()) {
        rows.push_back({item.id, Fmt::gbByThousands(item.bytes), item.kind, item.note, item.id,
                        model.checked().contains(item.id)});
    }
    return rows;
}

Ring ring(std::uint64_t free, std::uint64_t capacity) {
    const double used = capacity > free ? static_cast<double>(capacity - free) / static_cast<double>(capacity) : 0.0;
    const int percent = static_cast<int>((1 - used) * 100);
    const std::string gb = Fmt::gbByThousands(capacity);
    return {used, fmt::format("{}%", percent), fmt::format("free of {} GB", gb),
            fmt::format("Disk: {} percent free of {} GB", percent, gb)};
}

std::uint64_t capacityBytes() {
    std::error_code error;
    const auto space = std::filesystem::space("/", error);
    return error ? 0 : space.capacity;
}

}  // namespace ravik::DiskScreen
