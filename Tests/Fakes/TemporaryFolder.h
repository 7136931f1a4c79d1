#pragma once

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include <stdlib.h>

namespace ravik::fakes {

/// A folder of a test's own, free of links, that goes with everything in it at the end.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "ravik-test-XXXXXX").native();
        if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
        m_path = std::filesystem::canonical(pattern);
    }
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

    /// Writes a file below the folder, and the folders on the way to it.
    void write(const std::filesystem::path& name, std::string_view text) const {
        std::filesystem::create_directories((m_path / name).parent_path());
        std::ofstream(m_path / name, std::ios::binary) << text;
    }

private:
    std::filesystem::path m_path;
};

}  // namespace ravik::fakes
