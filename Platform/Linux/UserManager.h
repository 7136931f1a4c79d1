#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ravik::platform {

/// The user's own service manager, as far as it shares out the CPU. Asked over the session bus, half a second at
/// most; never started by being asked. Main loop.
class UserManager {
public:
    /// No weight is set for a unit.
    static constexpr std::uint64_t noWeight = ~std::uint64_t{0};
    /// The unit gets what nobody else wants; known from version 252 on.
    static constexpr std::uint64_t idleWeight = 0;

    /// `address` in D-Bus's form; empty: there is none. Connects at the first question.
    explicit UserManager(std::string address);
    ~UserManager();
    UserManager(const UserManager&) = delete;
    UserManager& operator=(const UserManager&) = delete;

    /// Its major version; 0 if nobody answers.
    int version();
    /// CPUWeight of a loaded unit; absent if there is no such unit.
    std::optional<std::uint64_t> weight(const std::string& unit);
    /// Until the unit or the manager ends. False if it was refused.
    bool setWeight(const std::string& unit, std::uint64_t weight);

private:
    struct Connection;
    Connection* connection();

    std::string m_address;
    bool m_tried = false;
    std::unique_ptr<Connection> m_connection;
};

/// The number at the beginning of "252.39-1~deb12u1"; 0 if there is none. Pure.
int majorVersion(std::string_view version);

}  // namespace ravik::platform
