#include <fmt/format.h>

#include "Core/Diagnosis/Classifier.h"

namespace ravik::Classifier {

std::vector<std::string> breaches(const SystemStats& stats, const Thresholds& limits) {
    const double swap = static_cast<double>(stats.swapUsedBytes) * 0x1p-30;
    const double swapOut = stats.swapOutBytesPerSec * 0x1p-20;
    const double disk = static_cast<double>(stats.diskFreeBytes) * 0x1p-30;
    std::vector<std::string> found;
    if (limits.swapGB < swap) found.push_back(fmt::format("swap {:.1f} GB", swap));
    if (limits.swapOutMBps < swapOut) found.push_back(fmt::format("swapping out {:.0f} MB/s", swapOut));
    if (stats.memoryFreePercent < limits.memoryFreePct) {
        found.push_back(fmt::format("memory free {}%", stats.memoryFreePercent));
    }
    if (disk < limits.diskFreeGB) found.push_back(fmt::format("disk {:.0f} GB free", disk));
    if (limits.loadPerCore * stats.cpuCount < stats.loadAverage) {
        found.push_back(fmt::format("load {:.0f}", stats.loadAverage));
    }
    return found;
}

}  // namespace ravik::Classifier
