#include "Platform/Linux/MemoryRelease.h"

#include <malloc.h>
#include <sys/mman.h>

#include "Platform/Linux/MappedCode.h"
#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

void releaseMemory() {
    malloc_trim(0);
    const auto maps = readFile("/proc/self/maps");
    if (!maps) return;
    for (const auto& code : mappedCode(*maps)) {
        madvise(reinterpret_cast<void*>(code.start), code.end - code.start, MADV_DONTNEED);
    }
}

}  // namespace ravik::platform
