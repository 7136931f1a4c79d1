#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace ravik {

/// Reads the lines of a log folder in the order of its days, and again what has been added since.
class LogTail {
public:
    /// With `kinds`, only lines of these; else all.
    LogTail(std::filesystem::path folder, const std::vector<std::string>& kinds);

    /// Calls back with every whole line, its line feed left out, that was not given before. A line without its line
    /// feed waits for it. A file that has become shorter is read anew.
    void read(const std::function<void(std::string_view)>& line);

private:
    void readFile(const std::filesystem::path& path, std::uint64_t& offset,
                  const std::function<void(std::string_view)>& line) const;
    bool wanted(std::string_view line) const;

    std::filesystem::path m_folder;
    std::vector<std::string> m_marks;  // "kind":"tick" and its like
    std::map<std::string, std::uint64_t> m_offsets;
};

}  // namespace ravik
