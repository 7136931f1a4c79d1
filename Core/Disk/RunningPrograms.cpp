#include "Core/Disk/RunningPrograms.h"

#include "Core/Diagnosis/Classifier.h"

namespace ravik::DiskScanner {

std::vector<RunningApp> runningPrograms(const std::vector<Proc>& procs, const Host& host) {
    std::vector<RunningApp> apps;
    for (const Proc& proc : procs) {
        if (proc.uid != host.uid) continue;
        apps.push_back({.bundleName = std::string(std::string_view(proc.name)),
                        .localizedName = Classifier::group(proc, host),
                        .pid = proc.id});
    }
    return apps;
}

}  // namespace ravik::DiskScanner
