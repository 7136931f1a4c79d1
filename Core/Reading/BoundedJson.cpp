#include "Core/Reading/BoundedJson.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace ravik::BoundedJson {

using nlohmann::json;

namespace {

constexpr std::size_t longestKeyInPath = 80;

/// Builds the value and knows where in it the parser stands.
class Builder : public nlohmann::json_sax<json> {
public:
    Builder(std::span<const std::string_view> keys, json& root) : m_keys(keys), m_root(root) {}

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(value); }
    bool number_unsigned(number_unsigned_t value) override { return add(value); }
    bool number_float(number_float_t value, const string_t&) override { return add(value); }
    bool string(string_t& value) override { return add(std::move(value)); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(json::object()); }
    bool start_array(std::size_t) override { return open(json::array()); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t& name) override {
        if (m_skipped > 0) return true;
        m_open.back().key = std::move(name);
        m_skipping = m_open.size() == 1 && std::ranges::find(m_keys, m_open.back().key) == m_keys.end();
        return true;
    }

    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& fault) override {
        constexpr int numberOverflow = 406;
        error = path() + (fault.id == numberOverflow ? ": number out of range"
                                                     : fmt::format(": not valid JSON at byte {}", position));
        return false;
    }

    std::string error;

private:
    struct Level {
        json* container;
        std::string key;
    };

    template <typename Value>
    bool add(Value&& value) {
        if (m_skipping) {
            if (m_skipped == 0) m_skipping = false;
            return true;
        }
        place(json(std::forward<Value>(value)));
        return true;
    }

    json* place(json&& value) {
        if (m_open.empty()) {
            m_root = std::move(value);
            return &m_root;
        }
        Level& level = m_open.back();
        if (level.container->is_array()) {
            level.container->push_back(std::move(value));
            return &level.container->back();
        }
        json& member = (*level.container)[level.key];
        member = std::move(value);
        return &member;
    }

    bool open(json&& container) {
        if (m_skipping) {
            ++m_skipped;
            return true;
        }
        if (m_open.size() == deepest) {
            error = fmt::format("{}: nested deeper than {} levels", path(), deepest);
            return false;
        }
        m_open.push_back({place(std::move(container)), {}});
        return true;
    }

    bool close() {
        if (!m_skipping) {
            m_open.pop_back();
        } else if (--m_skipped == 0) {
            m_skipping = false;
        }
        return true;
    }

    std::string path() const {
        std::string path;
        for (const Level& level : m_open) {
            if (level.container->is_array()) {
                // The element under way has its place already where it is a container.
                const bool inside = &level != &m_open.back();
                appendIndex(path, level.container->size() - (inside ? 1 : 0));
            } else if (!level.key.empty()) {
                appendKey(path, level.key);
            }
        }
        return path.empty() ? "capture" : path;
    }

    std::span<const std::string_view> m_keys;
    json& m_root;
    std::vector<Level> m_open;
    bool m_skipping = false;
    std::size_t m_skipped = 0;  // open containers of what is skipped
};

bool isPlain(std::string_view key) {
    return !key.empty() && std::ranges::all_of(key, [](unsigned char byte) {
        return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
               byte == '_' || byte == '-';
    });
}

}  // namespace

std::string parse(std::string_view text, std::span<const std::string_view> keys, json& root) {
    Builder builder(keys, root);
    if (json::sax_parse(text.begin(), text.end(), &builder)) return {};
    return builder.error.empty() ? "capture: not valid JSON" : builder.error;
}

void appendKey(std::string& path, std::string_view key) {
    if (isPlain(key) && key.size() <= longestKeyInPath) {
        if (!path.empty()) path += '.';
        path += key;
        return;
    }
    const json quoted = std::string(key.substr(0, longestKeyInPath));
    path += "[" + quoted.dump(-1, ' ', true, json::error_handler_t::replace) + "]";
}

void appendIndex(std::string& path, std::size_t index) { path += fmt::format("[{}]", index); }

}  // namespace ravik::BoundedJson
