#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <gio/gio.h>

namespace ravik::platform {

/// A service of a test's own under a name on a bus. Answers on a thread of its own, so that a call may wait for it.
class BusService {
public:
    /// The answer's body to a method's arguments; null for an error. Called on that thread.
    using Answer = std::function<GVariant*(std::string_view method, GVariant* arguments)>;

    BusService(const std::string& bus, const std::string& name, Answer answer);
    ~BusService();
    BusService(const BusService&) = delete;
    BusService& operator=(const BusService&) = delete;

    bool isUp() const { return m_up; }
    /// Takes over floating arguments.
    void emit(const char* path, const char* interface, const char* signal, GVariant* arguments) const;

private:
    static GDBusMessage* hear(GDBusConnection* bus, GDBusMessage* message, gboolean incoming, void* data);

    Answer m_answer;
    GDBusConnection* m_bus = nullptr;
    guint m_filter = 0;
    bool m_up = false;
};

}  // namespace ravik::platform
