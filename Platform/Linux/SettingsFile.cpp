#include "Platform/Linux/SettingsFile.h"

#include <cerrno>
#include <utility>

#include <nlohmann/json.hpp>

#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr int indent = 4;

fs::path behindLinks(const fs::path& path) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    return error ? path : real;
}

}  // namespace

SettingsFile::SettingsFile(const fs::path& path)
    : m_path(behindLinks(path)), m_values(std::make_unique<json>(json::object())), m_known(FileStamp::of(m_path)) {}

SettingsFile::~SettingsFile() = default;

SettingsFile::Content SettingsFile::read(json& values) const {
    values = json::object();
    errno = 0;
    const auto bytes = readFile(m_path.string());
    if (!bytes) return errno == ENOENT || errno == ENOTDIR ? Content::none : Content::unreadable;
    if (bytes->find_first_not_of(" \t\r\n") == std::string::npos) return Content::none;
    json parsed = json::parse(*bytes, nullptr, false);
    if (!parsed.is_object()) return Content::noObject;
    values = std::move(parsed);
    return Content::values;
}

std::optional<json> SettingsFile::get(std::string_view key) {
    if (const FileStamp present = FileStamp::of(m_path); present != m_read) {
        m_read = present;
        read(*m_values);
    }
    const auto found = m_values->find(key);
    if (found == m_values->end()) return {};
    return *found;
}

bool SettingsFile::set(std::string_view key, const json& value) { return change(key, &value); }

bool SettingsFile::remove(std::string_view key) { return change(key, nullptr); }

bool SettingsFile::change(std::string_view key, const json* value) {
    if (!makePrivateFolders(m_path.parent_path())) return false;
    const FileLock lock(fs::path(m_path) += ".lock");
    if (!lock.held()) return false;

    if (FileStamp::of(m_path) != m_known) m_changed = true;
    json values;
    const Content content = read(values);
    if (content == Content::unreadable) return false;
    const auto present = values.find(key);
    if (value ? present != values.end() && *present == *value : present == values.end()) return true;

    if (value) {
        values[std::string(key)] = *value;
    } else {
        values.erase(present);
    }
    if (content == Content::noObject && !keepAside(m_path)) return false;
    if (!replaceFile(m_path, values.dump(indent, ' ', false, json::error_handler_t::replace) + '\n')) return false;
    m_known = m_read = FileStamp::of(m_path);
    *m_values = std::move(values);
    return true;
}

bool SettingsFile::changed() {
    const FileStamp present = FileStamp::of(m_path);
    const bool told = std::exchange(m_changed, false) || present != m_known;
    m_known = present;
    return told;
}

}  // namespace ravik::platform
