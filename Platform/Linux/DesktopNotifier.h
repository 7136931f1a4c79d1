#pragma once

#include <cstdint>

#include "Platform/Platform.h"

typedef struct _GDBusConnection GDBusConnection;
typedef struct _GVariant GVariant;

namespace ravik::platform {

/// Notifications over the desktop's service on the session bus. Without a bus or a service nothing is shown, and that
/// counts as denied. Main loop.
class DesktopNotifier : public Notifier {
public:
    DesktopNotifier();
    ~DesktopNotifier() override;
    DesktopNotifier(const DesktopNotifier&) = delete;
    DesktopNotifier& operator=(const DesktopNotifier&) = delete;

    void post(const Notification& notification) override;
    void queryDenied(std::function<void(bool)> answer) override;
    void onAction(std::function<void(const std::string&)> observer) override { m_observer = std::move(observer); }

    /// Text that a service which reads markup shows as it is.
    static std::string escaped(std::string_view text);

private:
    struct Capabilities {
        bool actions = false;
        bool markup = false;
    };

    bool connect();
    void send(const Notification& notification, Capabilities capabilities);
    static void onSignal(GDBusConnection*, const char* sender, const char* path, const char* interface,
                         const char* signal, GVariant* parameters, void* self);

    GDBusConnection* m_bus = nullptr;
    unsigned m_subscription = 0;
    /// The one on the screen, which the next replaces; 0: none.
    std::uint32_t m_shown = 0;
    std::function<void(const std::string&)> m_observer;
    /// Answers that come back after this object has gone find nothing here.
    std::shared_ptr<DesktopNotifier*> m_self;
};

}  // namespace ravik::platform
