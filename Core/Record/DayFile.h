#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "Core/Base/Time.h"

namespace ravik {

/// The log file of the local day, opened for appending, and the folder it lies in. One thread.
class DayFile {
public:
    using CreatedAt = std::function<std::optional<Time>(const std::filesystem::path&)>;

    DayFile(std::filesystem::path folder, std::filesystem::path formerFolder, CreatedAt createdAt);
    ~DayFile();
    DayFile(const DayFile&) = delete;
    DayFile& operator=(const DayFile&) = delete;

    /// Appends one line, which ends with its line feed, to the file of this moment's day. The first line of a day
    /// opens that day's file and removes what has lain in the folder for more than 14 days; where the file cannot
    /// be opened, the day's lines are lost.
    void append(std::string_view line, Time now);

private:
    void rotate(const std::string& day, Time now);
    void prune(Time now) const;
    void close();

    std::filesystem::path m_folder;
    std::filesystem::path m_formerFolder;
    CreatedAt m_createdAt;
    std::string m_day;
    int m_file = -1;
    bool m_torn = false;
};

}  // namespace ravik
