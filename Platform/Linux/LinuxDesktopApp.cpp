#include "Platform/Linux/LinuxDesktopApp.h"

#include <fmt/format.h>

#include "Platform/Linux/DetachedProgram.h"

namespace ravik::platform {

namespace {

/// The other one may end between the refusal and the question.
constexpr int attempts = 3;

}  // namespace

LinuxDesktopApp::LinuxDesktopApp(DesktopAppOptions options)
    : m_options(std::move(options)),
      m_bus(m_options.bus),
      m_lock(m_options.runtime, "desktop.lock", desktopProgramName, m_options.uid) {}

std::optional<DesktopApp::Other> LinuxDesktopApp::claim(const Activation& asked) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const ApplicationBus::Answer answer = m_bus.claim();
        if (answer == ApplicationBus::Answer::mine) return {};
        if (answer == ApplicationBus::Answer::noBus) return claimByLock();
        const Pid pid = m_bus.owner().value_or(0);
        const auto delivery = m_bus.send(asked, tokens(asked), false);
        if (delivery == ApplicationBus::Delivery::nobody) continue;
        m_bus.release();
        return Other{pid, delivery == ApplicationBus::Delivery::heard};
    }
    m_bus.release();
    return Other{};
}

std::optional<DesktopApp::Other> LinuxDesktopApp::claimByLock() {
    if (m_lock.take() != LockFile::Answer::theirs) return {};
    return Other{m_lock.holder().pid, false};
}

void LinuxDesktopApp::onActivation(std::function<void(const Activation&)> observer) {
    m_bus.onActivation(std::move(observer));
}

void LinuxDesktopApp::release() {
    m_bus.release();
    m_lock.release();
}

std::map<std::string, std::string> LinuxDesktopApp::tokens(const Activation& asked) const {
    std::map<std::string, std::string> tokens;
    const auto add = [&](const char* key, std::string token) {
        if (!token.empty()) tokens.emplace(key, std::move(token));
    };
    add("activation-token", asked.token.empty() ? m_options.variable("XDG_ACTIVATION_TOKEN") : asked.token);
    add("desktop-startup-id", m_options.variable("DESKTOP_STARTUP_ID"));
    return tokens;
}

bool LinuxDesktopApp::hasDisplay() const {
    return !m_options.variable("DISPLAY").empty() || !m_options.variable("WAYLAND_DISPLAY").empty();
}

std::optional<std::string> LinuxDesktopApp::open(const Activation& asked) {
    switch (m_bus.send(asked, tokens(asked), false)) {
        case ApplicationBus::Delivery::heard: return {};
        case ApplicationBus::Delivery::unanswered:
            return fmt::format("The desktop app (process {}) is running but does not answer.",
                               m_bus.owner().value_or(0));
        case ApplicationBus::Delivery::nobody: break;
    }
    if (!m_bus.isThere()) {
        if (const auto other = claimByLock()) {
            return fmt::format("The desktop app (process {}) is running, but without a session bus it cannot be asked.",
                               other->pid);
        }
        m_lock.release();
    }
    if (!hasDisplay()) return "There is no display here, and the desktop app is not running.";
    // What the desktop starts itself it also counts as an application of its own.
    if (m_bus.canStart() && m_bus.send(asked, tokens(asked), true) == ApplicationBus::Delivery::heard) return {};
    return start(asked);
}

std::optional<std::string> LinuxDesktopApp::start(const Activation& asked) {
    const auto path = findProgram(desktopProgramName, m_options.programs, m_options.variable("PATH"));
    if (!path) return fmt::format("The desktop app, {}, is not installed.", desktopProgramName);
    std::vector<std::string> words{*path};
    if (!asked.action.empty()) words.push_back("--" + asked.action);
    if (!asked.parameter.empty()) words.push_back(asked.parameter);
    const auto failure = startDetached(words, m_options.home);
    if (!failure) return {};
    return fmt::format("The desktop app could not be started from {}: {}.", path->string(), *failure);
}

}  // namespace ravik::platform
