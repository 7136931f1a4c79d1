#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace ravik {

/// An immutable string whose copies share their bytes, so that a process record can be copied many times
/// a tick without allocating. Safe to copy between threads.
class Text {
public:
    Text() = default;
    Text(std::string text) : m_text(text.empty() ? nullptr : std::make_shared<const std::string>(std::move(text))) {}
    Text(std::string_view text) : Text(std::string(text)) {}
    Text(const char* text) : Text(std::string(text)) {}

    /// The bytes; valid while this or any copy lives.
    const std::string& str() const { return m_text ? *m_text : empty(); }
    std::string_view view() const { return str(); }
    operator std::string_view() const { return str(); }

    bool isEmpty() const { return !m_text; }
    std::size_t size() const { return str().size(); }

    /// True if both share the same bytes in memory: a cheap "certainly equal".
    bool sharesWith(const Text& other) const { return m_text == other.m_text; }

    friend bool operator==(const Text& a, const Text& b) { return a.sharesWith(b) || a.str() == b.str(); }
    friend bool operator==(const Text& a, std::string_view b) { return a.view() == b; }
    friend bool operator==(const Text& a, const char* b) { return a.view() == b; }
    friend bool operator==(const Text& a, const std::string& b) { return a.str() == b; }
    friend bool operator<(const Text& a, const Text& b) { return a.str() < b.str(); }

private:
    static const std::string& empty() {
        static const std::string none;
        return none;
    }

    std::shared_ptr<const std::string> m_text;
};

}  // namespace ravik

template <>
struct std::hash<ravik::Text> {
    std::size_t operator()(const ravik::Text& text) const { return std::hash<std::string_view>{}(text.view()); }
};
