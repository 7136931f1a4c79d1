#pragma once

#include <cstdint>

#include "Platform/Linux/NotificationSwitch.h"
#include "Platform/Platform.h"

typedef struct _GDBusConnection GDBusConnection;
typedef struct _GVariant GVariant;

namespace ravik::platform {

/// Notifications over the desktop's service on the session bus. Without a bus or a service nothing is shown, and that
/// counts as denied, as does the desktop's own switch for this application. Main loop.
class DesktopNotifier : public Notifier {
public:
    /// `bus` in D-Bus's form; empty: there is none. Nothing is connected before the first question.
    explicit DesktopNotifier(std::string bus, NotificationSwitch isOff = {});
    ~DesktopNotifier() override;
    DesktopNotifier(const DesktopNotifier&) = delete;
    DesktopNotifier& operator=(const DesktopNotifier&) = delete;

    /// One that comes while another is on its way takes the place of those that still wait.
    void post(const Notification& notification) override;
    void queryDenied(std::function<void(bool)> answer) override;
    void onAction(std::function<void(const std::string&)> observer) override { m_observer = std::move(observer); }
    std::string activationToken() const override { return m_token; }

    /// Text that a service which reads markup shows as it is.
    static std::string escaped(std::string_view text);

private:
    struct Capabilities {
        bool actions = false;
        bool markup = false;
    };

    bool connect();
    void disconnect();
    void send(const Notification& notification, Capabilities capabilities);
    void sent(std::uint32_t id);
    void hear(std::string_view signal, GVariant* parameters);
    static void onSignal(GDBusConnection*, const char* sender, const char* path, const char* interface,
                         const char* signal, GVariant* parameters, void* data);
    static void onOwner(GDBusConnection*, const char* sender, const char* path, const char* interface,
                        const char* signal, GVariant* parameters, void* data);

    std::string m_address;
    NotificationSwitch m_isOff;
    GDBusConnection* m_bus = nullptr;
    unsigned m_subscription = 0;
    unsigned m_owner = 0;
    /// The one on the screen, which the next replaces; 0: none.
    std::uint32_t m_shown = 0;
    bool m_sending = false;
    std::optional<Notification> m_waiting;
    /// Comes ahead of the button that it belongs to.
    std::string m_token;
    std::function<void(const std::string&)> m_observer;
    /// Answers that come back after this object has gone find nothing here.
    std::shared_ptr<DesktopNotifier*> m_self;
};

}  // namespace ravik::platform
