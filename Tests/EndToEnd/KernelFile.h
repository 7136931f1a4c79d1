#pragma once

#include <string>

#include "Tests/Fakes/TemporaryFolder.h"

namespace ravik::endtoend {

/// A file of the kernel's that says what a test wants, within isolated() and for as long as the object stands.
class KernelFile {
public:
    KernelFile(std::string path, const std::string& text);
    ~KernelFile();
    KernelFile(const KernelFile&) = delete;
    KernelFile& operator=(const KernelFile&) = delete;

private:
    fakes::TemporaryFolder m_folder;
    std::string m_path;
    bool m_covers = false;
};

/// What /proc/loadavg says on a machine that has far more to do than it can.
std::string heavyLoad();
/// What /proc/meminfo says now, but for so many percent of the memory that are left.
std::string shortMemory(int percent);

}  // namespace ravik::endtoend
