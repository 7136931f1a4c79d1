#include "Platform/Linux/UnitWeights.h"

#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <thread>

#include "Platform/Linux/ControlGroup.h"
#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t leastWeight = 1;
constexpr std::uint64_t kernelDefault = 100;
constexpr int idleSince = 252;

fs::path folderOf(const UnitScene& scene, std::string_view path) {
    return fs::path(scene.cgroupRoot) / fs::path(path).relative_path();
}

std::uint64_t inodeOf(const fs::path& folder) {
    struct stat status {};
    return ::stat(folder.c_str(), &status) == 0 ? status.st_ino : 0;
}

std::optional<std::uint64_t> number(const fs::path& file) {
    const auto text = readFile(file.native());
    std::uint64_t value = 0;
    if (!text || std::from_chars(text->data(), text->data() + text->size(), value).ec != std::errc{}) return {};
    return value;
}

/// True if every process in the group, and in the groups below it, is one of these.
bool holdsOnly(const fs::path& folder, const PidSet& pids) {
    const auto text = readFile((folder / "cgroup.procs").native());
    if (!text) return false;
    const char* at = text->data();
    const char* end = at + text->size();
    while (at != end) {
        Pid pid = 0;
        const auto [next, failed] = std::from_chars(at, end, pid);
        if (failed != std::errc{} || !pids.contains(pid)) return false;
        at = next == end ? end : next + 1;
    }
    std::error_code error;
    for (fs::directory_iterator each(folder, error); !error && each != fs::directory_iterator();
         each.increment(error)) {
        if (each->is_directory(error) && !holdsOnly(each->path(), pids)) return false;
    }
    return !error;
}

/// True if the manager of this user may weigh its units: the controller was handed down to it.
bool mayWeigh(const UnitScene& scene, std::string_view path) {
    const std::string manager = "/user@" + std::to_string(scene.uid) + ".service/";
    const std::size_t at = path.find(manager);
    if (at == std::string_view::npos) return false;
    const fs::path folder = folderOf(scene, path.substr(0, at + manager.size() - 1));
    const auto controllers = readFile((folder / "cgroup.controllers").native());
    if (!controllers) return false;
    std::string words = " " + *controllers + " ";
    std::ranges::replace(words, '\n', ' ');
    return words.find(" cpu ") != std::string::npos;
}

/// The manager answers a change before it has carried it out.
bool soon(const std::function<bool()>& shown) {
    constexpr int looks = 20;
    for (int look = 0; look < looks; ++look) {
        if (shown()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

bool isLow(const fs::path& folder) {
    return number(folder / "cpu.idle") == std::uint64_t{1} || number(folder / "cpu.weight") == leastWeight;
}

/// A unit without a weight may lose the controller, and the files with it.
bool hasWeight(const fs::path& folder, std::uint64_t weight) {
    if (weight == UserManager::idleWeight) return isLow(folder);
    const std::uint64_t expected = weight == UserManager::noWeight ? kernelDefault : weight;
    return number(folder / "cpu.idle").value_or(0) == 0 && number(folder / "cpu.weight").value_or(expected) == expected;
}

}  // namespace

std::vector<LoweredUnit> unitsOf(const UnitScene& scene, UserManager& manager, const PidSet& pids) {
    std::vector<LoweredUnit> units;
    for (const Pid pid : pids) {
        const auto text = readFile(scene.procRoot + "/" + std::to_string(pid) + "/cgroup");
        if (!text) return {};
        const std::string path(ControlGroup::unitPath(ControlGroup::path(*text)));
        const std::string name(ControlGroup::unit(path));
        if (!name.starts_with("app-") || !ControlGroup::isApplication(name) || !mayWeigh(scene, path)) return {};
        if (std::ranges::find(units, path, &LoweredUnit::path) != units.end()) continue;
        const std::uint64_t inode = inodeOf(folderOf(scene, path));
        if (inode == 0 || !holdsOnly(folderOf(scene, path), pids)) return {};
        units.push_back({name, path, inode, 0});
    }
    for (LoweredUnit& unit : units) {
        const auto weight = manager.weight(unit.name);
        if (!weight) return {};
        unit.weight = *weight;
    }
    return units;
}

bool lowerUnits(const UnitScene& scene, UserManager& manager, const std::vector<LoweredUnit>& units) {
    if (units.empty()) return true;
    const std::uint64_t weight = manager.version() >= idleSince ? UserManager::idleWeight : leastWeight;
    return std::ranges::all_of(units, [&](const LoweredUnit& unit) {
        const fs::path folder = folderOf(scene, unit.path);
        return inodeOf(folder) == unit.inode && manager.setWeight(unit.name, weight) &&
               soon([&] { return isLow(folder); });
    });
}

bool raiseUnits(const UnitScene& scene, UserManager& manager, const std::vector<LoweredUnit>& units) {
    bool done = true;
    for (const LoweredUnit& unit : units) {
        const fs::path folder = folderOf(scene, unit.path);
        if (inodeOf(folder) != unit.inode) continue;
        const auto now = manager.weight(unit.name);
        if (now && *now != UserManager::idleWeight && *now != leastWeight) continue;
        done =
            manager.setWeight(unit.name, unit.weight) && soon([&] { return hasWeight(folder, unit.weight); }) && done;
    }
    return done;
}

}  // namespace ravik::platform
