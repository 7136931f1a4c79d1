#include "Core/Reporting/Diagnostics.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <optional>
#include <system_error>
#include <vector>

#include <fmt/format.h>
#include <sys/stat.h>
#include <nlohmann/json.hpp>

#include "Core/Reporting/CopyTree.h"

namespace ravik::Diagnostics {

namespace fs = std::filesystem;

namespace {

using Failure = std::optional<std::string>;

constexpr std::string_view reportPrefix = "Ravik";

/// The folder that is packed, made for this and gone with it.
class Staging {
public:
    explicit Staging(fs::path path) : m_path(std::move(path)) {
        // A log holds command lines, and others can look into the temporary folder.
        if (mkdir(m_path.c_str(), 0700) != 0) m_error = errno;
    }
    ~Staging() {
        std::error_code ignored;
        if (m_error == 0) fs::remove_all(m_path, ignored);
    }
    Staging(const Staging&) = delete;
    Staging& operator=(const Staging&) = delete;

    Failure failure() const {
        if (m_error == 0) return {};
        return fmt::format("{} could not be made ({}).", m_path.string(), std::generic_category().message(m_error));
    }
    const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
    int m_error = 0;
};

Failure copyReports(const fs::path& from, const fs::path& to, const std::function<bool()>& cancelled) {
    if (mkdir(to.c_str(), 0700) != 0) {
        return fmt::format("{} could not be made ({}).", to.string(), std::generic_category().message(errno));
    }
    std::error_code error;
    for (fs::directory_iterator entry(from, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        std::error_code unknown;
        if (!name.starts_with(reportPrefix) || !fs::is_regular_file(entry->symlink_status(unknown))) continue;
        auto why = copyTree(entry->path(), to / name, cancelled);
        // Reports are kept in a bounded number: one may go between the listing and its turn.
        if (why && fs::exists(entry->path(), unknown)) return why;
    }
    return {};
}

Failure writeAbout(const fs::path& file, const std::string& line) {
    std::ofstream out(file, std::ios::binary);
    out << line << '\n';
    if (out.flush()) return {};
    return fmt::format("{} could not be written.", file.string());
}

Failure gather(const Contents& contents, const fs::path& to, const std::function<bool()>& cancelled) {
    std::error_code unknown;
    if (fs::exists(contents.logs, unknown)) {
        if (auto why = copyTree(contents.logs, to / "logs", cancelled)) return why;
    }
    if (auto why = copyReports(contents.crashReports, to / "crashes", cancelled)) return why;
    return writeAbout(to / "about.txt", contents.about);
}

}  // namespace

void didReceive(std::span<const DiagnosticPayload> payloads, Log& log) {
    for (const DiagnosticPayload& payload : payloads) {
        for (const CrashDiagnostic& crash : payload.crashes) {
            log.event("crash", {{"signal", crash.signal},
                                {"exception", crash.exception},
                                {"version", crash.version},
                                {"reason", crash.reason}});
        }
        for (const HangDiagnostic& hang : payload.hangs) log.event("hang", {{"seconds", hang.seconds}});
    }
}

void begin(CrashReports& reports, Log& log, const std::string& version) {
    didReceive(reports.takeNew(), log);
    reports.watch(version);
}

std::string about(std::string_view version, std::string_view system) {
    return fmt::format("Ravik {} · {}", version, system);
}

Bundle makeFeedbackBundle(const fs::path& folder, const Contents& contents, const fs::path& temporary, Time now,
                          Archive& archive, const std::function<bool()>& cancelled) {
    const std::string name = fmt::format("Ravik-feedback-{:.0f}", std::floor(now));
    const Staging staging(temporary / name);
    const fs::path zip = folder / (name + ".zip");
    auto why = staging.failure();
    if (!why) why = gather(contents, staging.path(), cancelled);
    if (!why) why = archive.zip(staging.path(), zip, cancelled);
    if (why) return {{}, std::move(*why)};
    return {zip, {}};
}

}  // namespace ravik::Diagnostics
