#include "Core/Record/LogFiles.h"

#include <algorithm>
#include <system_error>

namespace ravik {

std::vector<std::filesystem::path> logFiles(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    std::error_code failed;
    std::filesystem::directory_iterator entry(folder, failed);
    for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed)) {
        if (entry->path().extension() == ".jsonl") files.push_back(entry->path());
    }
    std::sort(files.begin(), files.end(),
              [](const auto& a, const auto& b) { return a.filename().native() < b.filename().native(); });
    return files;
}

std::vector<std::string> logDays(const std::filesystem::path& folder) {
    std::vector<std::string> days;
    for (const auto& file : logFiles(folder)) days.push_back(file.stem().string());
    return days;
}

}  // namespace ravik
