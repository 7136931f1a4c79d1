#include "Platform/Linux/ReportFolder.h"

#include <algorithm>
#include <ctime>
#include <tuple>

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Core/Base/ReplaceFile.h"
#include "Platform/Linux/CrashHandler.h"
#include "Platform/Linux/ReadFile.h"
#include "Platform/Linux/ReportText.h"

namespace ravik::platform {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kept = 20;
constexpr double hangSeconds = 2.0;

struct Report {
    fs::path path;
    std::pair<time_t, long> written;

    std::string name() const { return path.filename().string(); }
    bool isCrash() const { return name().starts_with(ReportText::crashPrefix); }
    bool isFresh() const { return name().ends_with(ReportText::freshSuffix); }
};

/// Oldest first.
std::vector<Report> reportsIn(const fs::path& folder) {
    std::vector<Report> reports;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (!name.starts_with(ReportText::crashPrefix) && !name.starts_with(ReportText::hangPrefix)) continue;
        struct stat about {};
        if (lstat(entry->path().c_str(), &about) != 0 || !S_ISREG(about.st_mode)) continue;
        reports.push_back({entry->path(), {about.st_mtim.tv_sec, about.st_mtim.tv_nsec}});
    }
    std::ranges::sort(reports, {}, [](const Report& report) { return std::tuple(report.written, report.path); });
    return reports;
}

void prune(const fs::path& folder) {
    const auto reports = reportsIn(folder);
    for (std::size_t each = 0; each + kept < reports.size(); ++each) unlink(reports[each].path.c_str());
}

DiagnosticPayload payloadOf(const Report& report, std::string_view text) {
    DiagnosticPayload payload;
    if (report.isCrash()) {
        payload.crashes.push_back(ReportText::crash(text));
    } else if (const auto hang = ReportText::hang(text)) {
        payload.hangs.push_back(*hang);
    }
    return payload;
}

/// Marks this run's reports: when it began, and its pid.
std::string markOfRun() { return fmt::format("{:%Y%m%dT%H%M%SZ}-{}", fmt::gmtime(std::time(nullptr)), getpid()); }

}  // namespace

ReportFolder::ReportFolder(fs::path folder) : m_folder(std::move(folder)) {}

std::vector<DiagnosticPayload> ReportFolder::takeNew() {
    std::vector<DiagnosticPayload> payloads;
    for (const Report& report : reportsIn(m_folder)) {
        if (!report.isFresh()) continue;
        fs::path taken = report.path;
        taken.replace_extension(".txt");
        // Of several that start at once, one gets the new name.
        if (rename(report.path.c_str(), taken.c_str()) != 0) continue;
        DiagnosticPayload payload = payloadOf(report, readFile(taken.string()).value_or(""));
        if (payload != DiagnosticPayload{}) payloads.push_back(std::move(payload));
    }
    prune(m_folder);
    return payloads;
}

void ReportFolder::watch(const std::string& version) {
    const std::string mark = markOfRun();
    const auto file = [folder = m_folder, mark](std::string_view prefix, const std::string& number) {
        return folder / fmt::format("{}{}{}{}", prefix, mark, number, ReportText::freshSuffix);
    };
    installCrashHandler(file(ReportText::crashPrefix, ""), version);
    m_watchdog = std::make_unique<LoopWatchdog>(hangSeconds, [=, folder = m_folder](const LoopWatchdog::Hang& hang) {
        replaceFile(file(ReportText::hangPrefix, fmt::format("-{}", hang.number)),
                    ReportText::ofHang(hang.seconds, version));
        if (hang.over) prune(folder);
    });
}

}  // namespace ravik::platform
