#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>

namespace ravik {

/// Reads a log file in chunks and hands out whole lines only, while its writer goes on appending. Holds one chunk
/// and the line that is being read; a line longer than a chunk is held whole. One object may read many files in
/// turn.
class LogBytes {
public:
    static constexpr std::size_t chunkBytes = 1 << 20;
    /// So many bytes behind everything that is handed out may be read, and mean nothing.
    static constexpr std::size_t padding = 64;

    LogBytes() = default;
    ~LogBytes();
    LogBytes(const LogBytes&) = delete;
    LogBytes& operator=(const LogBytes&) = delete;

    /// Begins at `offset` bytes into `file`; false if it cannot be opened.
    bool open(const std::filesystem::path& file, std::uint64_t offset = 0);
    /// The next lines; ends with a line feed. Empty at the end of the file or at an error. Valid until the next call.
    std::string_view next();
    /// After the last next(): what stands behind the last line feed. Empty after an error.
    std::string_view tail() const { return {m_buffer.get(), m_carry}; }

private:
    void close();
    void makeRoom();

    int m_fd = -1;
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_capacity = 0;
    /// Where the carry begins; behind what next() handed out.
    std::size_t m_start = 0;
    std::size_t m_carry = 0;
};

/// Calls `each` with every line of `block` that is not empty, without its line feed. The last line may lack one.
template <typename Each>
void forEachLine(std::string_view block, Each each) {
    while (!block.empty()) {
        const std::size_t end = block.find('\n');
        const std::string_view line = block.substr(0, end);
        if (!line.empty()) each(line);
        if (end == std::string_view::npos) return;
        block.remove_prefix(end + 1);
    }
}

}  // namespace ravik
