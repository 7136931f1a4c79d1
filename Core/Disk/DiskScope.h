#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "Core/Base/Time.h"
#include "Core/Disk/DiskTables.h"

namespace ravik::DiskScanner {

/// What must be exceeded for a folder to be listed.
inline constexpr std::uint64_t cacheBytes = 52'428'800;  // 50 MiB, a known cache
inline constexpr std::uint64_t smallBytes = 20'971'520;  // 20 MiB, anything else
inline constexpr double idleDays = 30;

using ProjectRoots = std::vector<std::filesystem::path>;
/// Whether the application that uses a cache runs now.
using IsRunning = std::function<bool(const DiskTables::Owner&)>;

/// Whose disk is looked at, and when.
struct Scope {
    const DiskTables& tables;
    std::filesystem::path home;  // absolute
    Time now = 0;
    /// Called on the scan's thread.
    IsRunning isRunning;
    /// Set from any thread to end a scan; null: never.
    const std::atomic<bool>* cancelled = nullptr;

    bool isCancelled() const { return cancelled && cancelled->load(std::memory_order_relaxed); }
};

}  // namespace ravik::DiskScanner
