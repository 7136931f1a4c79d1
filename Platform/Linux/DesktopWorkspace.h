#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "Platform/Linux/SessionBus.h"
#include "Platform/Linux/Windows.h"
#include "Platform/Platform.h"

namespace ravik::platform {

/// What a workspace is given by whoever composes the program.
struct WorkspaceOptions {
    /// The core's name for the application of a live process; absent if there is none.
    std::function<std::optional<std::string>(Pid)> groupOf;
    /// Continues a paused application before it is asked to quit. May be null; outlives the workspace.
    const Signals* signals = nullptr;
    std::filesystem::path procRoot = "/proc";
};

/// The running applications of a desktop: who owns a window, and who has an application's name on the session bus.
/// With neither it is a workspace without a display, where nothing runs and nobody can be asked.
class DesktopWorkspace : public Workspace {
public:
    /// `windows` and `bus` may be null.
    DesktopWorkspace(WorkspaceOptions options, std::unique_ptr<Windows> windows, std::unique_ptr<SessionBus> bus);

    std::vector<RunningApp> running() override;
    std::optional<std::string> frontmost() override;
    bool knowsFocus() override;
    void onActivation(std::function<void(const std::string&)> observer) override;
    bool terminate(const RunningApp& app) override;
    bool isTerminated(const RunningApp& app) override;
    std::optional<std::string> iconPath(const std::string& group) override;

private:
    std::optional<std::uint64_t> startTicks(Pid pid) const;
    void resume(Pid pid) const;

    WorkspaceOptions m_options;
    std::unique_ptr<Windows> m_windows;
    std::unique_ptr<SessionBus> m_bus;
    /// Start of each process as it was listed, and as it was asked to quit.
    std::unordered_map<Pid, std::uint64_t> m_listed;
    std::unordered_map<Pid, std::uint64_t> m_asked;
    std::unordered_map<std::string, std::optional<std::string>> m_icons;
};

/// Where the displays and the bus of this session are.
struct SessionAddresses {
    std::string display = {};         // $DISPLAY
    std::string waylandDisplay = {};  // $WAYLAND_DISPLAY
    std::string swaySocket = {};      // $SWAYSOCK
    std::string bus = {};

    static SessionAddresses fromEnvironment();
};

/// The workspace for this session. GLib's default main context has to run for its events.
std::unique_ptr<Workspace> makeWorkspace(WorkspaceOptions options,
                                         const SessionAddresses& session = SessionAddresses::fromEnvironment());

}  // namespace ravik::platform
