#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Core/Disk/DiskScanner.h"
#include "Tests/Fakes/TemporaryFolder.h"

namespace ravik {

inline constexpr std::uint64_t MiB = 1u << 20;
inline constexpr double day = 86'400;

/// A home folder of its own on a real file system, removed at the end.
class DiskTree : public ::testing::Test {
protected:
    DiskTree();

    /// Makes the folders and a file in which exactly this much is allocated, a multiple of 4096.
    void fill(const std::filesystem::path& where, std::uint64_t bytes, const std::string& name = "data");
    void folder(const std::filesystem::path& path) { std::filesystem::create_directories(path); }
    void file(const std::filesystem::path& path, const std::string& text = "x");
    void link(const std::filesystem::path& path, const std::filesystem::path& target);
    /// Sets the modification time of the thing itself, in days before `now`.
    void age(const std::filesystem::path& path, double days);

    DiskScanner::Scope scope(HostKind kind = HostKind::linux);
    std::vector<Reclaimable> scan(HostKind kind = HostKind::linux);
    std::vector<std::string> scannedIds(HostKind kind = HostKind::linux);

    std::filesystem::path home;
    /// Beside the home folder, for what lies outside of it.
    std::filesystem::path outside;
    DiskScanner::ProjectRoots roots;
    std::vector<RunningApp> running;
    const Time now = 1'760'000'000;

private:
    fakes::TemporaryFolder m_folder;
    const std::filesystem::path m_base = m_folder.path();
};

/// Keeps what it is given where it is, and notes its path.
class NotingTrash : public Trash {
public:
    std::optional<std::string> move(const std::filesystem::path& path) override {
        if (refusal) return refusal;
        moved.push_back(path.string());
        return {};
    }
    std::vector<std::string> moved;
    std::optional<std::string> refusal;
};

/// Runs `check` in a child process of its own and gives what it returned; -1 if it died.
int inChild(const std::function<int()>& check);
/// Makes this process an ordinary user, if it is not one.
bool becomeOrdinaryUser();
/// Gives this process mounts that nobody else sees.
bool becomeAloneWithMounts();

}  // namespace ravik
