#include "Tests/EndToEnd/KernelFile.h"

#include <fstream>
#include <sstream>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

#include "Tests/EndToEnd/Isolation.h"

namespace ravik::endtoend {

KernelFile::KernelFile(std::string path, const std::string& text) : m_path(std::move(path)) {
    m_folder.write("text", text);
    const std::string mine = (m_folder.path() / "text").native();
    m_covers = isIsolated() && mount(mine.c_str(), m_path.c_str(), nullptr, MS_BIND, nullptr) == 0;
    EXPECT_TRUE(m_covers) << m_path;
}

KernelFile::~KernelFile() { EXPECT_TRUE(!m_covers || umount2(m_path.c_str(), MNT_DETACH) == 0) << m_path; }

std::string heavyLoad() { return "9999.00 9999.00 9999.00 10000/20000 4711\n"; }

std::string shortMemory(int percent) {
    std::ifstream file("/proc/meminfo");
    std::string text;
    unsigned long total = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("MemTotal:")) std::istringstream(line.substr(9)) >> total;
        const bool isWhatIsLeft = line.starts_with("MemAvailable:");
        text += (isWhatIsLeft ? fmt::format("MemAvailable: {} kB", total * unsigned(percent) / 100) : line) + "\n";
    }
    return text;
}

}  // namespace ravik::endtoend
