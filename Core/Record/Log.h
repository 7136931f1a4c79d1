#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

#include "Core/Base/Time.h"

namespace ravik {

/// The event log: one JSON object a line in `<folder>/<local day>.jsonl`. Nothing it does can disturb the
/// program: every failure drops lines, in silence.
class Log {
public:
    struct Options {
        std::filesystem::path folder;
        /// Where the folder used to be; moved here once, if `folder` does not exist.
        std::filesystem::path formerFolder;
        /// Seconds since 1970; called on the caller's thread and on the writer's.
        std::function<Time()> now;
        /// Marks all lines of this run: 8 upper-case hexadecimal digits.
        std::string session;
        /// False under a test host: nothing is written and no folder is made.
        bool enabled = true;
        /// When a file was made, for the 14 days that one is kept; absent counts as now. Where nobody can tell, every
        /// file is kept. Writer's thread.
        std::function<std::optional<Time>(const std::filesystem::path&)> createdAt = {};
    };

    explicit Log(Options options);
    /// Writes what is waiting, then ends.
    ~Log();
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    /// Adds one line. Any thread; never blocks on the disk. `fields` is an object, or null for none; one named
    /// "t", "kind" or "session" replaces the built-in.
    void event(std::string_view kind, const nlohmann::json& fields);
    void event(std::string_view kind);

    /// Waits until all lines so far have reached the file.
    void flush();

    const std::filesystem::path& folder() const;
    const std::string& session() const;

    /// 8 digits out of a fresh random UUID.
    static std::string newSession();

private:
    struct Writer;
    std::unique_ptr<Writer> m_writer;
};

}  // namespace ravik
