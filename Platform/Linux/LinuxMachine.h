#pragma once

#include <filesystem>

#include "Platform/Platform.h"

namespace ravik::platform {

/// Machine-wide figures out of /proc and /sys. Both roots may be captured copies.
class LinuxMachine : public MachineReadings {
public:
    struct Roots {
        std::filesystem::path proc = "/proc";
        std::filesystem::path sys = "/sys";
    };

    explicit LinuxMachine(Roots roots);
    LinuxMachine();
    ~LinuxMachine() override;

    std::optional<MemoryReading> memory() override;
    std::uint64_t installedBytes() override;
    /// Without what a compressed swap in memory itself takes up.
    std::optional<std::uint64_t> swapUsedBytes() override;
    std::optional<std::uint64_t> diskFreeBytes() override;
    std::optional<double> loadAverage() override;
    std::optional<int> cpuCount() override;
    /// Of the first card that tells it. A card that sleeps is not woken by being asked.
    std::optional<int> gpuPercent() override;

private:
    class Nvml;
    struct ContainerMemory {
        std::uint64_t limit = 0;
        std::uint64_t used = 0;  // without what would be given up for the asking
    };

    std::optional<ContainerMemory> container() const;
    void findGpu();
    std::optional<int> nvmlPercent();

    Roots m_roots;
    std::filesystem::path m_gpu;  // the card's device folder; empty: none
    bool m_gpuSought = false;
    bool m_viaNvml = false;
    std::uint64_t m_swapOutPages = 0;  // of the last reading that had it
    std::unique_ptr<Nvml> m_nvml;
};

}  // namespace ravik::platform
