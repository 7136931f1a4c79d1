#include "Core/Watch/SystemStatsSampler.h"

#include "Platform/Platform.h"

namespace ravik {

SystemStats SystemStatsSampler::sample() {
    SystemStats stats;
    readMemory(stats);
    stats.swapUsedBytes = m_machine.swapUsedBytes().value_or(0);
    stats.diskFreeBytes = m_machine.diskFreeBytes().value_or(0);
    stats.loadAverage = m_machine.loadAverage().value_or(0);
    stats.cpuCount = m_machine.cpuCount().value_or(0);
    stats.gpuPercent = m_machine.gpuPercent().value_or(-1);
    return stats;
}

void SystemStatsSampler::readMemory(SystemStats& stats) {
    const auto memory = m_machine.memory();
    if (!memory) return;

    const Time now = m_clock.now();
    if (m_lastSwapOut && now > m_lastSwapOut->at) {
        // The counter may wrap, and so may the difference; a product beyond 64 bits is no reason to fall.
        const std::uint64_t pages = memory->swapOutPages - m_lastSwapOut->pages;
        stats.swapOutBytesPerSec =
            static_cast<double>(pages) * static_cast<double>(memory->pageBytes) / (now - m_lastSwapOut->at);
    }
    m_lastSwapOut = SwapOut{memory->swapOutPages, now};

    if (const std::uint64_t installed = m_machine.installedBytes(); installed > 0) {
        stats.memoryFreePercent = static_cast<int>(memory->availableBytes * 100 / installed);
    }
}

}  // namespace ravik
