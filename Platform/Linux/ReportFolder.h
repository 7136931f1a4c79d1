#pragma once

#include <memory>

#include "Platform/Linux/LoopWatchdog.h"
#include "Platform/Platform.h"

namespace ravik::platform {

/// Crash and hang reports of this program, one file each, in the folder of its log: "Ravik-crash-…" and "Ravik-hang-…",
/// ending in ".new" until a run has taken them, then in ".txt". The 20 latest are kept.
class ReportFolder : public CrashReports {
public:
    explicit ReportFolder(std::filesystem::path folder);

    std::vector<DiagnosticPayload> takeNew() override;
    void watch(const std::string& version) override;

private:
    std::filesystem::path m_folder;
    std::unique_ptr<LoopWatchdog> m_watchdog;
};

}  // namespace ravik::platform
