// Loaded into a program ahead of its libraries: its time of day goes on by as many seconds as stand, as one 64-bit
// number, in the file that RAVIK_TEST_CLOCK names. Clocks that only measure stay as they are.
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <ctime>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using Read = int (*)(clockid_t, timespec*);

const std::atomic<std::int64_t>* openAhead() {
    const char* path = std::getenv("RAVIK_TEST_CLOCK");
    const int file = path ? open(path, O_RDONLY | O_CLOEXEC) : -1;
    if (file < 0) return nullptr;
    void* page = mmap(nullptr, sizeof(std::int64_t), PROT_READ, MAP_SHARED, file, 0);
    close(file);
    return page == MAP_FAILED ? nullptr : static_cast<const std::atomic<std::int64_t>*>(page);
}

}  // namespace

extern "C" int clock_gettime(clockid_t id, timespec* tp) {
    static const auto kernels = reinterpret_cast<Read>(dlsym(RTLD_NEXT, "clock_gettime"));
    static const auto* const ahead = openAhead();
    const int failed = kernels(id, tp);
    if (failed == 0 && id == CLOCK_REALTIME && ahead) tp->tv_sec += ahead->load();
    return failed;
}
