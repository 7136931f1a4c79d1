#include "Platform/Linux/LinuxMachine.h"

#include <algorithm>
#include <cstdlib>

#include <dlfcn.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "Platform/Linux/MachineParse.h"
#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace fs = std::filesystem;

/// The maker's own library for its cards, where it is installed.
class LinuxMachine::Nvml {
public:
    Nvml() : m_library(dlopen("libnvidia-ml.so.1", RTLD_NOW | RTLD_LOCAL)) {
        if (!m_library) return;
        const auto init = function<int (*)()>("nvmlInit_v2");
        const auto handle = function<int (*)(unsigned, void**)>("nvmlDeviceGetHandleByIndex_v2");
        m_read = function<int (*)(void*, Utilization*)>("nvmlDeviceGetUtilizationRates");
        if (!init || !handle || !m_read || init() != 0 || handle(0, &m_device) != 0) m_device = nullptr;
    }
    ~Nvml() {
        if (!m_library) return;
        if (const auto shutdown = function<int (*)()>("nvmlShutdown")) shutdown();
        dlclose(m_library);
    }
    Nvml(const Nvml&) = delete;
    Nvml& operator=(const Nvml&) = delete;

    std::optional<int> percent() const {
        Utilization used{};
        if (!m_device || m_read(m_device, &used) != 0) return {};
        return static_cast<int>(used.gpu);
    }

private:
    struct Utilization {
        unsigned gpu;
        unsigned memory;
    };

    template <typename F>
    F function(const char* name) const {
        return reinterpret_cast<F>(dlsym(m_library, name));
    }

    void* m_library;
    void* m_device = nullptr;
    int (*m_read)(void*, Utilization*) = nullptr;
};

LinuxMachine::LinuxMachine(Roots roots) : m_roots(std::move(roots)) {}

LinuxMachine::LinuxMachine() : LinuxMachine(Roots{}) {}

LinuxMachine::~LinuxMachine() = default;

std::optional<LinuxMachine::ContainerMemory> LinuxMachine::container() const {
    const auto groups = memoryGroups(readFile(m_roots.proc / "self/cgroup").value_or(""));
    if (!groups) return {};
    const fs::path root = m_roots.sys / (groups->isUnified ? "fs/cgroup" : "fs/cgroup/memory");
    const char* const limitName = groups->isUnified ? "memory.max" : "memory.limit_in_bytes";
    const char* const usedName = groups->isUnified ? "memory.current" : "memory.usage_in_bytes";
    std::optional<ContainerMemory> smallest;
    for (const std::string& group : groups->folders) {
        const fs::path folder = root / fs::path(group).relative_path();
        const auto limit = memoryLimit(readFile(folder / limitName).value_or(""));
        if (!limit || (smallest && smallest->limit <= *limit)) continue;
        const std::uint64_t used = wholeNumber(readFile(folder / usedName).value_or("")).value_or(0);
        const std::uint64_t reclaimable = reclaimableBytes(readFile(folder / "memory.stat").value_or(""));
        smallest = {*limit, used - std::min(used, reclaimable)};
    }
    return smallest;
}

std::optional<MemoryReading> LinuxMachine::memory() {
    const auto meminfo = readFile(m_roots.proc / "meminfo");
    const auto available = meminfo ? meminfoBytes(*meminfo, "MemAvailable") : std::nullopt;
    if (!available) return {};
    // A kernel without swap may not count it, which says nothing against the free memory.
    m_swapOutPages = vmstatCounter(readFile(m_roots.proc / "vmstat").value_or(""), "pswpout").value_or(m_swapOutPages);
    MemoryReading reading{*available, m_swapOutPages, static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE))};
    if (const auto inside = container()) {
        const std::uint64_t left = inside->limit > inside->used ? inside->limit - inside->used : 0;
        reading.availableBytes = std::min(reading.availableBytes, left);
    }
    return reading;
}

std::uint64_t LinuxMachine::installedBytes() {
    const auto total = meminfoBytes(readFile(m_roots.proc / "meminfo").value_or(""), "MemTotal");
    const auto inside = container();
    if (inside && total) return std::min(inside->limit, *total);
    return total.value_or(0);
}

std::optional<std::uint64_t> LinuxMachine::swapUsedBytes() {
    const auto meminfo = readFile(m_roots.proc / "meminfo");
    const auto total = meminfo ? meminfoBytes(*meminfo, "SwapTotal") : std::nullopt;
    const auto free = meminfo ? meminfoBytes(*meminfo, "SwapFree") : std::nullopt;
    if (!total || !free) return {};
    std::uint64_t used = *total > *free ? *total - *free : 0;
    if (used == 0) return used;
    // A zram device may also hold a file system: only those that are swap count.
    for (const std::string& device : zramSwaps(readFile(m_roots.proc / "swaps").value_or(""))) {
        const auto store = zramStoreBytes(readFile(m_roots.sys / "block" / device / "mm_stat").value_or(""));
        used -= std::min(used, store.value_or(0));
    }
    return used;
}

std::optional<std::uint64_t> LinuxMachine::diskFreeBytes() {
    struct statvfs volume {};
    if (statvfs("/", &volume) != 0) return {};
    return static_cast<std::uint64_t>(volume.f_bavail) * volume.f_frsize;
}

std::optional<double> LinuxMachine::loadAverage() {
    const auto text = readFile(m_roots.proc / "loadavg");
    if (!text || text->empty()) return {};
    return std::strtod(text->c_str(), nullptr);
}

std::optional<int> LinuxMachine::cpuCount() {
    const long count = sysconf(_SC_NPROCESSORS_ONLN);
    if (count < 1) return {};
    return static_cast<int>(count);
}

void LinuxMachine::findGpu() {
    m_gpuSought = true;
    std::vector<fs::path> cards;
    std::error_code error;
    for (fs::directory_iterator at(m_roots.sys / "class/drm", error), end; !error && at != end; at.increment(error)) {
        const std::string name = at->path().filename().string();
        if (name.starts_with("card") && name.find('-') == name.npos) cards.push_back(at->path() / "device");
    }
    std::ranges::sort(cards);
    const auto tells = [](const fs::path& card) {
        std::error_code missing;
        return fs::exists(card / "gpu_busy_percent", missing);
    };
    const auto isNvidia = [](const fs::path& card) {
        return readFile(card / "vendor").value_or("").starts_with("0x10de");
    };
    if (const auto card = std::ranges::find_if(cards, tells); card != cards.end()) {
        m_gpu = *card;
    } else if (const auto nvidia = std::ranges::find_if(cards, isNvidia); nvidia != cards.end()) {
        m_gpu = *nvidia;
        m_viaNvml = true;
    }
}

std::optional<int> LinuxMachine::nvmlPercent() {
    // The library wakes a card and keeps it awake: where the card may fall asleep, it is let go after each look.
    if (readFile(m_gpu / "power/control").value_or("").starts_with("auto")) return Nvml().percent();
    if (!m_nvml) m_nvml = std::make_unique<Nvml>();
    return m_nvml->percent();
}

std::optional<int> LinuxMachine::gpuPercent() {
    if (!m_gpuSought) findGpu();
    if (m_gpu.empty()) return {};
    if (readFile(m_gpu / "power/runtime_status").value_or("").starts_with("suspended")) return {};
    if (m_viaNvml) return nvmlPercent();
    const auto percent = wholeNumber(readFile(m_gpu / "gpu_busy_percent").value_or(""));
    if (!percent) return {};
    return static_cast<int>(*percent);
}

}  // namespace ravik::platform
