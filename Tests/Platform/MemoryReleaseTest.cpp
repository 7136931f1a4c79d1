#include "Platform/Linux/MemoryRelease.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Platform/Linux/MappedCode.h"
#include "Platform/Linux/ReadFile.h"

// A sanitizer brings a heap of its own, and pages of files that are no code.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
namespace ravik::platform {
namespace {

/// Kilobytes of this program's mapped files that are in memory for it.
long residentFiles() {
    const std::string status = readFile("/proc/self/status").value_or("");
    const auto at = status.find("RssFile:");
    return at == status.npos ? 0 : std::stol(status.substr(at + 8));
}

long residentHeap() {
    const std::string status = readFile("/proc/self/status").value_or("");
    const auto at = status.find("RssAnon:");
    return at == status.npos ? 0 : std::stol(status.substr(at + 8));
}

TEST(MemoryRelease, DropsCodeThatComesBackWhenItIsRun) {
    // All of it is in memory for a moment.
    volatile char sum = 0;
    for (const auto& code : mappedCode(readFile("/proc/self/maps").value_or(""))) {
        for (auto page = code.start; page < code.end; page += 4096) sum = sum + *reinterpret_cast<const char*>(page);
    }
    const long before = residentFiles();
    releaseMemory();
    EXPECT_LT(residentFiles(), before * 3 / 4);
    EXPECT_EQ(std::to_string(12345), "12345");
}

TEST(MemoryRelease, GivesBackWhatTheHeapNoLongerHolds) {
    std::vector<std::unique_ptr<std::string>> blocks;
    for (int block = 0; block < 20'000; ++block) blocks.push_back(std::make_unique<std::string>(1000, 'x'));
    const auto last = std::make_unique<std::string>(1000, 'x');
    blocks.clear();
    const long before = residentHeap();
    releaseMemory();
    EXPECT_LT(residentHeap(), before - 10'000);
    EXPECT_EQ(last->back(), 'x');
}

}  // namespace
}  // namespace ravik::platform
#endif
