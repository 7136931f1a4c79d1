#pragma once

#include <string>

typedef struct _GDBusConnection GDBusConnection;
typedef struct _GVariant GVariant;

namespace ravik::endtoend {

/// Somebody on a message bus.
class Bus {
public:
    explicit Bus(const std::string& address);
    ~Bus();
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    /// Null if there is no bus there.
    GDBusConnection* connection() const { return m_connection; }
    /// Calls and waits for the answer, which is the caller's to release; null if it is an error, or none comes within
    /// five seconds. `words` is taken if it floats. Starts the service where the bus knows how.
    GVariant* call(const std::string& owner, const std::string& path, const char* interface, const char* method,
                   GVariant* words = nullptr) const;
    /// True while a program has that name.
    bool owns(const std::string& name) const;

private:
    GDBusConnection* m_connection = nullptr;
};

}  // namespace ravik::endtoend
