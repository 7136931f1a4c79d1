#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "Platform/DesktopApp.h"
#include "Platform/Linux/ApplicationBus.h"
#include "Platform/Linux/LockFile.h"

namespace ravik::platform {

/// The file name of the app's program.
inline constexpr const char* desktopProgramName = "ravik-desktop";

struct DesktopAppOptions {
    /// Of the session bus; empty: there is none.
    std::string bus;
    /// The run-time folder, for a lock where there is no bus.
    std::filesystem::path runtime;
    std::filesystem::path home;
    /// Where this program lies, and with it the app's.
    std::filesystem::path programs;
    std::uint32_t uid = 0;
    /// A variable of the environment; empty if it is not set.
    std::function<std::string(const char*)> variable;
};

/// One app by its name on the session bus; where there is no bus, by the lock "desktop.lock" in the run-time folder,
/// through which nobody can be asked for anything.
class LinuxDesktopApp : public DesktopApp {
public:
    explicit LinuxDesktopApp(DesktopAppOptions options);

    std::optional<Other> claim(const Activation& asked) override;
    void onActivation(std::function<void(const Activation&)> observer) override;
    void release() override;
    std::optional<std::string> open(const Activation& asked) override;

private:
    std::optional<Other> claimByLock();
    std::optional<std::string> start(const Activation& asked);
    std::map<std::string, std::string> tokens(const Activation& asked) const;
    bool hasDisplay() const;

    DesktopAppOptions m_options;
    ApplicationBus m_bus;
    LockFile m_lock;
};

}  // namespace ravik::platform
