#pragma once

#include <utility>

#include <unistd.h>

namespace ravik::platform {

/// An open file, closed with its owner. -1: none.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int file) : m_file(file) {}
    Descriptor(Descriptor&& other) noexcept : m_file(std::exchange(other.m_file, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(m_file, other.m_file);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    explicit operator bool() const { return m_file >= 0; }
    int get() const { return m_file; }
    void close() {
        if (m_file >= 0) ::close(std::exchange(m_file, -1));
    }

private:
    int m_file = -1;
};

}  // namespace ravik::platform
