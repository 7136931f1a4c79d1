#pragma once

#include <cstdint>
#include <string>

namespace ravik::platform {

/// Makes the property by which an X desktop hands out its settings.
class XSettingsBytes {
public:
    explicit XSettingsBytes(bool bigEndian) : m_bigEndian(bigEndian) {}

    XSettingsBytes& number(const std::string& name, std::int32_t value) {
        begin(0, name);
        put(static_cast<std::uint32_t>(value), 4);
        return *this;
    }
    XSettingsBytes& text(const std::string& name, const std::string& value) {
        begin(1, name);
        put(static_cast<std::uint32_t>(value.size()), 4);
        pad(value);
        return *this;
    }
    XSettingsBytes& colour(const std::string& name) {
        begin(2, name);
        m_settings += std::string(8, '\x7f');
        return *this;
    }

    std::string bytes() const {
        XSettingsBytes head(m_bigEndian);
        head.m_settings = {m_bigEndian ? '\1' : '\0', 0, 0, 0};
        head.put(7, 4);  // the serial
        head.put(m_count, 4);
        return head.m_settings + m_settings;
    }

private:
    void begin(std::uint32_t type, const std::string& name) {
        ++m_count;
        put(type, 1);
        put(0, 1);
        put(static_cast<std::uint32_t>(name.size()), 2);
        pad(name);
        put(7, 4);  // when it changed last
    }
    void put(std::uint32_t value, unsigned size) {
        for (unsigned at = 0; at < size; ++at) {
            m_settings += static_cast<char>(value >> 8 * (m_bigEndian ? size - 1 - at : at));
        }
    }
    void pad(const std::string& value) { m_settings += value + std::string((4 - value.size() % 4) % 4, '\0'); }

    bool m_bigEndian;
    std::uint32_t m_count = 0;
    std::string m_settings;
};

}  // namespace ravik::platform
