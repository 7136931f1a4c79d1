#include "Core/Record/DayFile.h"

#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Core/Base/Iso8601.h"

namespace ravik {

namespace fs = std::filesystem;

namespace {

constexpr Time keptSeconds = 14 * 24 * 60 * 60;

// A folder that holds command lines is its owner's business alone.
void makeFolders(const fs::path& folder) {
    std::error_code ignored;
    if (folder.empty() || fs::exists(folder, ignored)) return;
    if (folder.parent_path() != folder) makeFolders(folder.parent_path());
    mkdir(folder.c_str(), 0700);
}

}  // namespace

DayFile::DayFile(fs::path folder, fs::path formerFolder, CreatedAt createdAt)
    : m_folder(std::move(folder)), m_formerFolder(std::move(formerFolder)), m_createdAt(std::move(createdAt)) {}

DayFile::~DayFile() { close(); }

void DayFile::close() {
    if (m_file >= 0) ::close(m_file);
    m_file = -1;
    m_torn = false;
}

void DayFile::append(std::string_view line, Time now) {
    if (const std::string day = Iso8601::localDay(now); day != m_day) rotate(day, now);
    if (m_file < 0) return;

    // Behind half a line, which a full disk leaves, a whole one begins on a line of its own.
    std::string behindTorn;
    if (m_torn) line = behindTorn.append(1, '\n').append(line);
    const ssize_t written = write(m_file, line.data(), line.size());
    if (written > 0) m_torn = static_cast<std::size_t>(written) < line.size();
}

void DayFile::rotate(const std::string& day, Time now) {
    m_day = day;
    close();

    std::error_code ignored;
    if (!m_formerFolder.empty() && !fs::exists(m_folder, ignored) && fs::exists(m_formerFolder, ignored)) {
        fs::rename(m_formerFolder, m_folder, ignored);
    }
    makeFolders(m_folder);
    m_file = open((m_folder / (day + ".jsonl")).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    prune(now);
}

void DayFile::prune(Time now) const {
    if (!m_createdAt) return;
    std::vector<fs::path> old;
    std::error_code error;
    for (fs::directory_iterator entry(m_folder, error), end; !error && entry != end; entry.increment(error)) {
        if (m_createdAt(entry->path()).value_or(now) < now - keptSeconds) old.push_back(entry->path());
    }
    for (const auto& path : old) fs::remove_all(path, error);
}

}  // namespace ravik
