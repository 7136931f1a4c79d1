#include "Platform/Linux/AppNames.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

#include <dirent.h>
#include <sys/stat.h>

#include "Platform/Linux/AppRules.h"
#include "Platform/Linux/ApplicationUnit.h"
#include "Platform/Linux/CommandLine.h"
#include "Platform/Linux/Interpreters.h"
#include "Platform/Linux/ProcFolder.h"
#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> splitPaths(const char* value, const char* otherwise) {
    std::vector<fs::path> paths;
    std::string_view rest = value && *value ? value : otherwise;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        // A relative path counts as absent.
        if (rest.starts_with('/')) paths.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return paths;
}

std::optional<timespec> changedAt(const fs::path& folder) {
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return {};
    return status.st_mtim;
}

std::string resolve(const std::string& path) {
    char target[PATH_MAX];
    return realpath(path.c_str(), target) ? std::string(target) : path;
}

std::string find(const std::vector<fs::path>& programs, const std::string& program) {
    if (program.find('/') != std::string::npos) return program.front() == '/' ? program : std::string();
    for (const fs::path& folder : programs) {
        std::string path = (folder / program).native();
        if (access(path.c_str(), X_OK) == 0) return path;
    }
    return {};
}

std::string folderOf(std::string_view path) { return std::string(path.substr(0, path.rfind('/') + 1)); }

}  // namespace

AppNames::Folders AppNames::Folders::fromEnvironment() {
    const char* home = std::getenv("HOME");
    const std::string base = home ? home : "";
    Folders folders;
    const auto addData = [&](const fs::path& data) {
        fs::path entries = data / "applications";
        if (std::ranges::find(folders.applications, entries) == folders.applications.end()) {
            folders.applications.push_back(std::move(entries));
        }
    };
    for (const fs::path& data : splitPaths(std::getenv("XDG_DATA_HOME"), (base + "/.local/share").c_str()))
        addData(data);
    for (const fs::path& data : splitPaths(std::getenv("XDG_DATA_DIRS"), "/usr/local/share:/usr/share")) addData(data);
    // A session started from elsewhere does not have these among its own.
    addData(base + "/.local/share/flatpak/exports/share");
    addData("/var/lib/flatpak/exports/share");
    addData("/var/lib/snapd/desktop");
    folders.programs = splitPaths(std::getenv("PATH"), "/usr/local/bin:/usr/bin:/bin");
    return folders;
}

AppNames::AppNames(Folders folders, std::string procRoot)
    : m_folders(std::move(folders)), m_procRoot(std::move(procRoot)), m_index(std::make_unique<DesktopIndex>()) {}

void AppNames::refresh() {
    const bool isSame = m_isBuilt && std::ranges::all_of(m_stamps, [](const Stamp& stamp) {
                            return stamp == Stamp{stamp.folder, changedAt(stamp.folder).value_or(timespec{})};
                        });
    if (!isSame) build();
}

void AppNames::build() {
    m_names.clear();
    m_stamps.clear();
    m_index = std::make_unique<DesktopIndex>();
    for (const fs::path& folder : m_folders.applications) addFolder(folder, folder);
    m_isBuilt = true;
    ++m_generation;
}

void AppNames::addFolder(const fs::path& root, const fs::path& folder) {
    // The stamp before the contents: what comes in between is seen at the next refresh. One that is not there yet
    // is watched for too.
    m_stamps.push_back({folder, changedAt(folder).value_or(timespec{})});
    const ProgramFiles files{[this](const std::string& program) { return find(m_folders.programs, program); }, resolve};
    std::error_code error;
    std::vector<fs::path> paths;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
        paths.push_back(at->path());
    std::ranges::sort(paths);
    for (const fs::path& path : paths) {
        if (path.extension() == ".desktop") {
            std::string id = path.lexically_relative(root).replace_extension().native();
            std::ranges::replace(id, '/', '-');
            const auto text = readFile(path.native());
            auto entry = text ? parseDesktopEntry(*text, std::move(id)) : std::nullopt;
            if (entry) m_index->add(std::move(*entry), files);
        } else if (fs::is_directory(fs::symlink_status(path, error))) {
            addFolder(root, path);
        }
    }
}

AppNames::Answer AppNames::ask(const Subject& subject, Pid parent, const Ancestors& ancestors) const {
    const std::string& executable = subject.executable;
    Answer answer;
    answer.handsDown = !startsForeigners(baseName(executable)) && !startsForeigners(subject.name);
    const auto found = [&](const DesktopEntry& entry) {
        answer.app = nameOf(entry);
        if (entry.isTerminal()) answer.handsDown = false;
        return answer;
    };

    const DesktopEntry* own = executable.empty() ? nullptr : m_index->owner(executable, subject.command);
    if (!own && !subject.script.empty()) own = m_index->owner(subject.script, subject.command);
    if (!own && !subject.script.empty()) own = m_index->owner(resolve(subject.script), subject.command);

    if (const DesktopEntry* unit = entryOfUnit(subject.unit)) {
        if (ownedBy(*unit, executable, subject.script)) return found(*unit);
        if (own) return found(*own);
        if (!unit->isTypedIn()) return found(*unit);
    }

    if (isHelperProcess(executable, subject.command)) {
        const std::string folder = folderOf(executable);
        auto ancestor = ancestors(parent);
        for (int depth = 0; ancestor && depth < 64; ++depth, ancestor = ancestors(ancestor->parent)) {
            if (folder.empty() || folderOf(ancestor->executable) != folder) continue;
            if (!ancestor->answer->app) break;
            answer.app = ancestor->answer->app;
            return answer;
        }
    }
    if (own) return found(*own);

    if (const auto ancestor = ancestors(parent); ancestor && ancestor->answer->handsDown && ancestor->answer->app) {
        answer.app = ancestor->answer->app;
        answer.isInherited = true;
    }
    return answer;
}

bool AppNames::ownedBy(const DesktopEntry& entry, const std::string& executable, const std::string& script) const {
    return m_index->owns(entry, executable) || m_index->owns(entry, script) ||
           (!script.empty() && m_index->owns(entry, resolve(script)));
}

const DesktopEntry* AppNames::entryOfUnit(std::string_view unit) const {
    for (const std::string& id : applicationIds(unit)) {
        if (const DesktopEntry* entry = m_index->byId(id)) return entry;
    }
    return nullptr;
}

const Text& AppNames::nameOf(const DesktopEntry& entry) const {
    const auto [slot, isNew] = m_names.try_emplace(&entry);
    if (isNew) slot->second = Text(entry.name);
    return slot->second;
}

std::optional<ApplicationUnits::Application> AppNames::ofUnit(std::string_view unit) {
    if (!m_isBuilt) build();
    const DesktopEntry* entry = entryOfUnit(unit);
    if (!entry) return {};
    return Application{entry->id, entry->isTypedIn()};
}

bool AppNames::belongs(const Proc& proc, const std::string& id) {
    if (!m_isBuilt) build();
    const DesktopEntry* entry = m_index->byId(id);
    if (!entry) return false;
    const ProcFolder folder(m_procRoot);
    ReadBuffer buffer;
    const auto area = folder.read(proc.id, "cmdline", buffer);
    const std::string executable = folder.executable(proc.id).value_or("");
    return ownedBy(*entry, std::string(withoutDeleted(executable)), area ? scriptPathOf(splitArguments(*area)) : "");
}

std::string scriptPathOf(const std::vector<std::string_view>& arguments) {
    const std::string_view script = scriptOf(arguments);
    return script.starts_with('/') ? std::string(script) : std::string();
}

}  // namespace ravik::platform
