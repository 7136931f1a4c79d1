#include "Platform/Linux/DesktopIndex.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "Platform/Linux/CommandLine.h"
#include "Platform/Linux/Interpreters.h"

namespace ravik::platform {

namespace {

constexpr std::array<std::string_view, 8> applicationRoots{
    "/opt/",         "/usr/lib/",       "/usr/lib64/",       "/usr/share/",
    "/usr/libexec/", "/usr/local/lib/", "/usr/local/share/", "/usr/local/libexec/"};

// Below the roots, but many programs' common ground.
constexpr std::array<std::string_view, 9> sharedFolders{"jvm",      "python", "node_modules", "nodejs",      "systemd",
                                                        "git-core", "llvm",   "go",           "applications"};

constexpr std::array<std::string_view, 18> startsOthers{"env",         "flatpak",
                                                        "snap",        "xdg-open",
                                                        "gio",         "gtk-launch",
                                                        "dbus-launch", "dbus-run-session",
                                                        "exo-open",    "wine",
                                                        "wine64",      "pkexec",
                                                        "sudo",        "gksu",
                                                        "systemctl",   "systemd-run",
                                                        "kioclient",   "x-terminal-emulator"};

constexpr std::size_t imagePrefix = 6;

std::string lower(std::string_view text) {
    std::string folded(text);
    std::ranges::transform(folded, folded.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; });
    return folded;
}

std::string_view parentFolder(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view{} : path.substr(0, slash);
}

bool isTriplet(std::string_view name) { return name.find("-linux-") != std::string_view::npos; }

/// The component behind `prefix` in a path below it; empty otherwise.
std::string componentBelow(std::string_view path, std::string_view prefix) {
    if (!path.starts_with(prefix)) return {};
    path.remove_prefix(prefix.size());
    const std::size_t slash = path.find('/');
    return slash == std::string_view::npos ? std::string() : std::string(path.substr(0, slash));
}

std::string snapOf(std::string_view path) {
    std::string package = componentBelow(path, "/snap/");
    if (package.empty()) package = componentBelow(path, "/var/lib/snapd/snap/");
    if (package == "bin") {
        const std::string_view command = baseName(path);
        package = command.substr(0, command.find('.'));
    }
    return package;
}

std::string imageOf(std::string_view path) {
    constexpr std::string_view mount = "/.mount_";
    const std::size_t at = path.find(mount);
    return at == std::string_view::npos ? std::string() : std::string(path.substr(at + mount.size(), imagePrefix));
}

bool startsWithWord(std::string_view text, std::string_view word) {
    return text.starts_with(word) && (text.size() == word.size() || text[word.size()] == ' ');
}

bool holdsArgument(std::string_view command, std::string_view argument) {
    for (std::size_t at = command.find(argument); at != std::string_view::npos; at = command.find(argument, at + 1)) {
        if (at > 0 && command[at - 1] == ' ' && startsWithWord(command.substr(at), argument)) return true;
    }
    return false;
}

}  // namespace

std::string applicationFolder(std::string_view path) {
    const auto root = std::ranges::find_if(applicationRoots, [&](auto known) { return path.starts_with(known); });
    if (root == applicationRoots.end()) return {};
    std::string_view folder = parentFolder(path);
    if (baseName(folder) == "bin" || baseName(folder) == "sbin") {
        // "/opt/conda/bin/editor" does not make all of conda an editor; "/usr/share/code/bin/code" is one.
        folder = parentFolder(folder);
        const std::string program = lower(baseName(path));
        const std::string stem = program.substr(0, program.find('.'));
        if (folder.size() <= root->size() || lower(baseName(folder)).find(stem) == std::string::npos) return {};
    }
    if (folder.size() < root->size()) return {};
    std::string_view below = folder.substr(root->size());
    if (isTriplet(below.substr(0, below.find('/')))) {
        const std::size_t slash = below.find('/');
        if (slash == std::string_view::npos) return {};
        below.remove_prefix(slash + 1);
    }
    const std::string_view first = below.substr(0, below.find('/'));
    const bool isShared = std::ranges::any_of(sharedFolders, [&](std::string_view shared) {
        return first == shared || (first.starts_with(shared) && first.find_first_of("0123456789-.") == shared.size());
    });
    return first.empty() || isShared ? std::string() : std::string(folder);
}

void DesktopIndex::add(DesktopEntry entry, const ProgramFiles& files) {
    const auto [slot, isNew] = m_entries.try_emplace(entry.id);
    if (!isNew) return;
    slot->second = std::make_unique<DesktopEntry>(std::move(entry));
    const DesktopEntry& added = *slot->second;
    if (added.isHidden) return;
    addLaunch(added, added.exec, files);
    if (!added.tryExec.empty()) addProgram({&added, launchTarget(added.exec).arguments}, added.tryExec, files);
    if (!added.snap.empty()) m_bySnap[added.snap].push_back({&added, {}});
}

void DesktopIndex::addLaunch(const DesktopEntry& entry, const std::string& exec, const ProgramFiles& files) {
    const LaunchTarget target = launchTarget(exec);
    const Member member{&entry, target.arguments};
    if (!target.flatpakCommand.empty()) {
        m_byFlatpakCommand[std::string(baseName(target.flatpakCommand))].push_back({&entry, {}});
    }
    if (target.program.empty()) return;
    if (!target.script.empty()) {
        const std::string script = files.find(target.script);
        Member run{&entry, {}};
        const auto at = std::ranges::find(target.arguments, target.script);
        if (at != target.arguments.end()) run.arguments.assign(at + 1, target.arguments.end());
        if (!script.empty()) addProgram(run, script, files);
    }
    addProgram(member, target.program, files);
}

void DesktopIndex::addProgram(const Member& member, const std::string& program, const ProgramFiles& files) {
    const std::string_view name = baseName(program);
    if (isInterpreter(name) || std::ranges::find(startsOthers, name) != startsOthers.end()) return;
    const std::string path = files.find(program);
    if (path.empty()) return;
    if (const std::string package = snapOf(path); !package.empty()) {
        m_bySnap[package].push_back(member);
        return;
    }
    if (lower(name).ends_with(".appimage")) m_byImage[std::string(name.substr(0, imagePrefix))].push_back(member);
    const std::string resolved = files.resolve(path);
    if (isInterpreter(baseName(resolved))) return;
    m_byPath[path].push_back(member);
    if (resolved != path) m_byPath[resolved].push_back(member);

    std::string folder = applicationFolder(resolved);
    if (!folder.empty()) m_byFolder[folder].push_back(member);
    if (!folder.empty() || baseName(parentFolder(resolved)) != "bin") return;
    // A starting script in a common folder: what it starts lies in a folder of the script's name.
    for (const std::string_view root : applicationRoots) {
        m_byFolder[std::string(root) + std::string(name)].push_back(member);
    }
}

const DesktopEntry* DesktopIndex::byId(std::string_view id) const {
    const auto found = m_entries.find(std::string(id));
    return found == m_entries.end() || found->second->isHidden ? nullptr : found->second.get();
}

const DesktopIndex::Members* DesktopIndex::membersOf(const std::string& path) const {
    const auto look = [](const Table& table, const std::string& key) -> const Members* {
        const auto found = table.find(key);
        return found == table.end() ? nullptr : &found->second;
    };
    if (const Members* exact = look(m_byPath, path)) return exact;
    if (const std::string image = imageOf(path); !image.empty()) return look(m_byImage, image);
    if (const std::string package = snapOf(path); !package.empty()) return look(m_bySnap, package);
    if (path.starts_with("/app/")) return look(m_byFlatpakCommand, std::string(baseName(path)));
    for (std::string_view folder = parentFolder(path); folder.size() > 1; folder = parentFolder(folder)) {
        if (const Members* members = look(m_byFolder, std::string(folder))) return members;
    }
    return nullptr;
}

bool DesktopIndex::owns(const DesktopEntry& entry, const std::string& path) const {
    const Members* members = path.empty() ? nullptr : membersOf(path);
    return members && std::ranges::any_of(*members, [&](const Member& member) { return member.entry == &entry; });
}

const DesktopEntry* DesktopIndex::owner(const std::string& path, std::string_view command) const {
    const Members* members = membersOf(path);
    if (!members) return nullptr;
    // The entry with the most arguments of its own that are all there; one that is not shown or has the longer name
    // gives way.
    const auto rank = [&](const Member& member) {
        const bool fits = std::ranges::all_of(member.arguments,
                                              [&](const std::string& word) { return holdsArgument(command, word); });
        const auto count = static_cast<std::ptrdiff_t>(member.arguments.size());
        const std::string& id = member.entry->id;
        return std::tuple(!fits, !member.entry->isDisplayed, fits ? -count : 0, id.size(), std::string_view(id));
    };
    return std::ranges::min(*members, {}, rank).entry;
}

}  // namespace ravik::platform
