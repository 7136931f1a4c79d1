#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Core/Base/Text.h"
#include "Core/Reading/BoundedJson.h"

namespace ravik {

/// A place in a JSON value that knows its path, for reading strictly. Every read answers false at the first fault,
/// which is kept as one line. The value and the parents must outlive it.
class Node {
public:
    Node(const nlohmann::json& value, std::string& error) : m_value(value), m_error(error) {}

    const nlohmann::json& value() const { return m_value; }
    bool isNull() const { return m_value.is_null(); }
    bool has(const char* key) const { return m_value.find(key) != m_value.end(); }

    /// Notes the fault, unless there is one already.
    bool fail(std::string_view what) const {
        if (m_error.empty()) m_error = fmt::format("{}: {}", path(), what);
        return false;
    }

    bool isObject() const { return m_value.is_object() || fail("expected an object"); }
    bool isArray() const { return m_value.is_array() || fail("expected an array"); }

    bool read(bool& out) const {
        if (!m_value.is_boolean()) return fail("expected true or false");
        out = m_value.get<bool>();
        return true;
    }
    bool read(double& out) const {
        if (!m_value.is_number()) return fail("expected a number");
        out = m_value.get<double>();
        return true;
    }
    bool read(std::string& out) const {
        if (!m_value.is_string()) return fail("expected a string");
        out = m_value.get_ref<const std::string&>();
        return true;
    }
    bool read(Text& out) const {
        if (!m_value.is_string()) return fail("expected a string");
        out = m_value.get_ref<const std::string&>();
        return true;
    }
    bool read(std::int32_t& out) const {
        constexpr auto low = std::numeric_limits<std::int32_t>::min();
        constexpr auto high = std::numeric_limits<std::int32_t>::max();
        return whole(out, low, high, "expected a whole number within signed 32 bits");
    }
    bool read(std::uint32_t& out) const {
        return whole(out, 0, std::numeric_limits<std::uint32_t>::max(),
                     "expected a whole number within unsigned 32 bits");
    }
    /// A size.
    bool read(std::uint64_t& out) const {
        if (!m_value.is_number_integer()) return fail("expected a whole number");
        if (!m_value.is_number_unsigned() && m_value.get<std::int64_t>() < 0) {
            return fail("expected a size, which is not negative");
        }
        out = m_value.get<std::uint64_t>();
        return true;
    }

    /// Calls `visit(Node)` with the member, which must be there.
    template <typename Visit>
    bool member(std::string_view key, Visit visit) const {
        const auto found = m_value.find(key);
        if (found == m_value.end()) return Node(*this, key, m_value).fail("missing");
        return visit(Node(*this, key, *found));
    }
    /// Calls `visit(Node)` with the member, if it is there.
    template <typename Visit>
    bool optionalMember(std::string_view key, Visit visit) const {
        const auto found = m_value.find(key);
        return found == m_value.end() || visit(Node(*this, key, *found));
    }
    template <typename Out>
    bool required(std::string_view key, Out& out) const {
        return member(key, [&](const Node& node) { return node.read(out); });
    }
    template <typename Out>
    bool optional(std::string_view key, Out& out) const {
        return optionalMember(key, [&](const Node& node) { return node.read(out); });
    }

    /// Calls `visit(Node)` with each element, in order, until one answers false.
    template <typename Visit>
    bool elements(Visit visit) const {
        if (!isArray()) return false;
        for (std::size_t at = 0; at < m_value.size(); ++at) {
            if (!visit(Node(*this, at, m_value[at]))) return false;
        }
        return true;
    }
    /// Calls `visit(key, Node)` with each member until one answers false.
    template <typename Visit>
    bool members(Visit visit) const {
        if (!isObject()) return false;
        for (auto entry = m_value.begin(); entry != m_value.end(); ++entry) {
            if (!visit(entry.key(), Node(*this, entry.key(), entry.value()))) return false;
        }
        return true;
    }

private:
    Node(const Node& parent, std::string_view key, const nlohmann::json& value)
        : m_value(value), m_error(parent.m_error), m_parent(&parent), m_key(key) {}
    Node(const Node& parent, std::size_t index, const nlohmann::json& value)
        : m_value(value), m_error(parent.m_error), m_parent(&parent), m_index(index), m_isElement(true) {}

    template <typename Out>
    bool whole(Out& out, std::int64_t low, std::int64_t high, const char* expected) const {
        if (!m_value.is_number_integer()) return fail("expected a whole number");
        const bool huge =
            m_value.is_number_unsigned() && m_value.get<std::uint64_t>() > static_cast<std::uint64_t>(high);
        if (huge || m_value.get<std::int64_t>() < low || m_value.get<std::int64_t>() > high) return fail(expected);
        out = static_cast<Out>(m_value.get<std::int64_t>());
        return true;
    }

    void appendPath(std::string& path) const {
        if (!m_parent) return;
        m_parent->appendPath(path);
        if (m_isElement) {
            BoundedJson::appendIndex(path, m_index);
        } else {
            BoundedJson::appendKey(path, m_key);
        }
    }
    std::string path() const {
        std::string path;
        appendPath(path);
        return path.empty() ? "capture" : path;
    }

    const nlohmann::json& m_value;
    std::string& m_error;
    const Node* m_parent = nullptr;
    std::string_view m_key;
    std::size_t m_index = 0;
    bool m_isElement = false;
};

}  // namespace ravik
