#include "Core/Record/LogTail.h"

#include <algorithm>
#include <fstream>

namespace ravik {

namespace {

constexpr std::size_t chunkBytes = 1 << 20;

}  // namespace

LogTail::LogTail(std::filesystem::path folder, const std::vector<std::string>& kinds) : m_folder(std::move(folder)) {
    for (const std::string& kind : kinds) m_marks.push_back("\"kind\":\"" + kind + "\"");
}

bool LogTail::wanted(std::string_view line) const {
    if (line.empty()) return false;
    return m_marks.empty() ||
           std::ranges::any_of(m_marks, [&](const auto& mark) { return line.find(mark) != line.npos; });
}

void LogTail::read(const std::function<void(std::string_view)>& line) {
    std::error_code error;
    std::vector<std::filesystem::path> files;
    for (std::filesystem::directory_iterator at(m_folder, error), end; !error && at != end; at.increment(error)) {
        if (at->path().extension() == ".jsonl") files.push_back(at->path());
    }
    std::ranges::sort(files, {}, [](const auto& path) { return path.filename(); });
    for (const auto& path : files) readFile(path, m_offsets[path.filename().string()], line);
}

void LogTail::readFile(const std::filesystem::path& path, std::uint64_t& offset,
                       const std::function<void(std::string_view)>& line) const {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error || size == offset) return;
    if (size < offset) offset = 0;
    std::ifstream file(path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(offset));
    std::string carry;
    std::string chunk(chunkBytes, '\0');
    while (file) {
        file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
        carry.append(chunk, 0, static_cast<std::size_t>(file.gcount()));
        std::size_t begin = 0;
        for (std::size_t feed; (feed = carry.find('\n', begin)) != carry.npos; begin = feed + 1) {
            const std::string_view whole(carry.data() + begin, feed - begin);
            if (wanted(whole)) line(whole);
        }
        offset += begin;
        carry.erase(0, begin);
    }
}

}  // namespace ravik
