#include "Core/Record/LogBytes.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ravik {

LogBytes::~LogBytes() { close(); }

void LogBytes::close() {
    if (m_fd >= 0) ::close(m_fd);
    m_fd = -1;
}

bool LogBytes::open(const std::filesystem::path& file, std::uint64_t offset) {
    close();
    m_start = m_carry = 0;
    // Somebody may have put a pipe into the folder, whose other end never comes, or a device, which has no end.
    m_fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat about {};
    if (m_fd < 0 || ::fstat(m_fd, &about) != 0 || !S_ISREG(about.st_mode)) {
        close();
        return false;
    }
    if (offset > 0) ::lseek(m_fd, static_cast<off_t>(offset), SEEK_SET);
    return true;
}

void LogBytes::makeRoom() {
    if (m_start > 0) std::memmove(m_buffer.get(), m_buffer.get() + m_start, m_carry);
    m_start = 0;
    const std::size_t needed = m_carry + chunkBytes + padding;
    if (needed <= m_capacity) return;
    // Twice as much for a line that goes on and on, so that it is not copied at each chunk.
    const std::size_t capacity = m_carry < chunkBytes ? 2 * chunkBytes + padding : std::max(needed, m_capacity * 2);
    std::unique_ptr<char[]> larger(new char[capacity]);
    if (m_carry > 0) std::memcpy(larger.get(), m_buffer.get(), m_carry);
    m_buffer = std::move(larger);
    m_capacity = capacity;
}

std::string_view LogBytes::next() {
    while (m_fd >= 0) {
        makeRoom();
        char* const chunk = m_buffer.get() + m_carry;
        const ssize_t got = ::read(m_fd, chunk, chunkBytes);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) {
            if (got < 0) m_carry = 0;
            close();
            return {};
        }
        const auto size = static_cast<std::size_t>(got);
        const std::size_t newline = std::string_view(chunk, size).rfind('\n');
        if (newline == std::string_view::npos) {
            m_carry += size;
            continue;
        }
        const std::size_t whole = m_carry + newline + 1;
        m_carry = size - newline - 1;
        m_start = whole;
        return {m_buffer.get(), whole};
    }
    return {};
}

}  // namespace ravik
