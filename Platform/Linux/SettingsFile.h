#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "Platform/Linux/StoreFile.h"
#include "Platform/Platform.h"

namespace ravik::platform {

/// The settings as one flat JSON object in a file of mode 0600, which a person may edit. Several processes may use
/// it at once: each change is made to what lies there now, under a lock ("<name>.lock" beside it).
///
/// A file that holds no JSON object gives nothing and is left as it is; the first change keeps it beside the new
/// one as "<name>.unreadable". A file that cannot be read at all refuses every change.
class SettingsFile : public Defaults {
public:
    explicit SettingsFile(const std::filesystem::path& path);
    ~SettingsFile() override;

    std::optional<nlohmann::json> get(std::string_view key) override;
    bool set(std::string_view key, const nlohmann::json& value) override;
    bool remove(std::string_view key) override;
    bool changed() override;

private:
    enum class Content { none, values, noObject, unreadable };

    Content read(nlohmann::json& values) const;
    /// Stores the values with this key's replaced, or taken out where `value` is null.
    bool change(std::string_view key, const nlohmann::json* value);

    std::filesystem::path m_path;  // behind a symbolic link, so that the link stays one
    FileStamp m_read;              // what m_values holds
    std::unique_ptr<nlohmann::json> m_values;
    FileStamp m_known;  // the last state that was ours or that changed() has told
    bool m_changed = false;
};

}  // namespace ravik::platform
