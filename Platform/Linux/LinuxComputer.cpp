#include <cstdlib>

#include <unistd.h>

#include "Platform/Computer.h"
#include "Platform/Linux/AppMemory.h"
#include "Platform/Linux/AppNames.h"
#include "Platform/Linux/AutostartEntry.h"
#include "Platform/Linux/Clock.h"
#include "Platform/Linux/DesktopAppearance.h"
#include "Platform/Linux/DesktopNotifier.h"
#include "Platform/Linux/DesktopWorkspace.h"
#include "Platform/Linux/DetachedProgram.h"
#include "Platform/Linux/FileManager.h"
#include "Platform/Linux/FileTrash.h"
#include "Platform/Linux/Folders.h"
#include "Platform/Linux/GLibLoop.h"
#include "Platform/Linux/LinuxDesktopApp.h"
#include "Platform/Linux/LinuxLevers.h"
#include "Platform/Linux/LinuxMachine.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Platform/Linux/LinuxServices.h"
#include "Platform/Linux/MemoryRelease.h"
#include "Platform/Linux/PidfdSignals.h"
#include "Platform/Linux/PosixTerminal.h"
#include "Platform/Linux/ReadFile.h"
#include "Platform/Linux/ReportFolder.h"
#include "Platform/Linux/SessionBus.h"
#include "Platform/Linux/SettingsFile.h"
#include "Platform/Linux/StandardStreams.h"
#include "Platform/Linux/WatcherLock.h"
#include "Platform/Linux/ZipArchive.h"

namespace ravik::platform {

namespace {

/// This computer, put together out of its parts. The loop is made last and goes first: what runs beside it needs
/// the others.
class LinuxComputer final : public Computer {
public:
    LinuxComputer(CoreRules rules, std::string name)
        : m_rules(std::move(rules)),
          m_folders(linuxFolders(processEnvironment())),
          m_table(m_clock, {.apps = &m_apps}),
          m_processes(m_table),
          m_services(serviceOptions()),
          m_workspace(makeWorkspace(workspaceOptions())),
          m_notifier(sessionBusAddress(), notificationSwitch(environment("XDG_CURRENT_DESKTOP").value_or(""),
                                                             configFolders(variables(), m_folders.home).front())),
          m_settings(m_folders.settings),
          m_watchLock(m_folders.runtime, std::move(name), geteuid()),
          m_desktopApp(desktopAppOptions()),
          m_appearance(appearanceOptions()),
          m_loginItem(configFolders(variables(), m_folders.home), [this] { return desktopProgram(); }),
          m_levers(m_signals, leverOptions()),
          m_platform{m_processes,  m_machine,    m_signals,    m_levers,    m_services,  *m_workspace, m_notifier,
                     m_settings,   m_trash,      m_loop,       m_clock,     m_watchLock, m_archive,    m_crashReports,
                     m_fileViewer, m_desktopApp, m_appearance, m_loginItem, m_folders} {}

    Platform& platform() override { return m_platform; }
    Terminal& terminal() override { return m_terminal; }
    bool isMac() const override { return false; }
    std::uint32_t uid() const override { return geteuid(); }
    Pid pid() const override { return getpid(); }
    std::optional<std::string> environment(const char* name) const override {
        const char* value = std::getenv(name);
        if (!value) return {};
        return value;
    }
    void onTermination(std::function<void()> handler) override {
        m_loop.onEndingSignal([handler = std::move(handler)](int) { handler(); });
    }
    void releaseMemory() override { platform::releaseMemory(); }
    std::string osRelease() const override {
        return readFile("/etc/os-release").value_or(readFile("/usr/lib/os-release").value_or(""));
    }

private:
    LinuxServices::Options serviceOptions() {
        LinuxServices::Options options;
        options.uid = geteuid();
        options.self = getpid();
        options.isToolHelper = m_rules.isToolHelper;
        options.applications = &m_apps;
        return options;
    }

    DesktopAppOptions desktopAppOptions() const {
        DesktopAppOptions options;
        options.bus = sessionBusAddress();
        options.runtime = m_folders.runtime;
        options.home = m_folders.home;
        options.programs = ownPrograms();
        options.uid = geteuid();
        options.variable = variables();
        return options;
    }

    AppearanceOptions appearanceOptions() const {
        AppearanceOptions options;
        options.bus = sessionBusAddress();
        if (!environment("WAYLAND_DISPLAY")) options.display = environment("DISPLAY").value_or("");
        return options;
    }

    std::function<std::string(const char*)> variables() const {
        return [this](const char* name) { return environment(name).value_or(""); };
    }

    static std::filesystem::path ownPrograms() {
        std::error_code error;
        return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    }

    std::optional<std::filesystem::path> desktopProgram() const {
        return findProgram(desktopProgramName, ownPrograms(), environment("PATH").value_or(""));
    }

    LeverOptions leverOptions() const {
        LeverOptions options;
        options.folder = m_folders.runtime;
        options.uid = geteuid();
        options.self = getpid();
        options.bus = sessionBusAddress();
        options.now = [this] { return m_clock.now(); };
        return options;
    }

    WorkspaceOptions workspaceOptions() {
        WorkspaceOptions options;
        options.groupOf = [this](Pid pid) -> std::optional<std::string> {
            const auto proc = m_processes.find(pid);
            if (!proc) return {};
            return m_rules.groupOf(*proc);
        };
        options.signals = &m_signals;
        return options;
    }

    CoreRules m_rules;
    Folders m_folders;
    SystemClock m_clock;
    AppNames m_apps;
    LinuxProcessTable m_table;
    AppMemory m_processes;
    LinuxMachine m_machine;
    PidfdSignals m_signals;
    LinuxServices m_services;
    std::unique_ptr<Workspace> m_workspace;
    DesktopNotifier m_notifier;
    SettingsFile m_settings;
    FileTrash m_trash;
    PosixTerminal m_terminal;
    WatcherLock m_watchLock;
    LinuxDesktopApp m_desktopApp;
    DesktopAppearance m_appearance;
    AutostartEntry m_loginItem;
    LinuxLevers m_levers;
    ZipArchive m_archive;
    FileManager m_fileViewer{sessionBusAddress()};
    GLibLoop m_loop;
    /// Stops watching the loop before the loop waits for what runs beside it.
    ReportFolder m_crashReports{m_folders.crashReports};
    Platform m_platform;
};

}  // namespace

}  // namespace ravik::platform

namespace ravik {

std::unique_ptr<Computer> makeComputer(CoreRules rules, std::string name) {
    platform::secureStandardStreams();
    return std::make_unique<platform::LinuxComputer>(std::move(rules), std::move(name));
}

}  // namespace ravik
