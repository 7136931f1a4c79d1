#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace ravik::platform {

/// Answers for a user's service manager on a bus of the test's own, and shows each change the way the kernel would: in
/// cpu.weight and cpu.idle of the unit's folder. Knows every unit that has a folder. Any thread.
class FakeUserManager {
public:
    FakeUserManager(const std::string& bus, const std::string& units);
    ~FakeUserManager();
    FakeUserManager(const FakeUserManager&) = delete;
    FakeUserManager& operator=(const FakeUserManager&) = delete;

    bool isUp() const;
    void setVersion(const std::string& version);
    /// As somebody else would.
    void setWeight(const std::string& unit, std::uint64_t weight);
    void forget(const std::string& unit);
    /// From now on changes are accepted and not carried out.
    void ignoreChanges();
    /// Whether the latest change was to last only until the next start.
    bool lastRuntime() const;

private:
    struct Service;
    std::unique_ptr<Service> m_service;
};

}  // namespace ravik::platform
