#include "Tests/EndToEnd/LaterClock.h"

#include <atomic>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace ravik::endtoend {

LaterClock::LaterClock(Home& home) {
    const std::filesystem::path path = home.path() / "clock";
    home.write("clock", std::string(sizeof *m_ahead, '\0'));
    const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
    void* page = mmap(nullptr, sizeof *m_ahead, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (page == MAP_FAILED) {
        ADD_FAILURE() << "no clock at " << path;
        return;
    }
    m_ahead = static_cast<std::int64_t*>(page);
    home.add("LD_PRELOAD=" RAVIK_BINARY_DIR "/bin/libravik-test-clock.so");
    home.add("RAVIK_TEST_CLOCK=" + path.native());
    // A sanitizer's library insists on being the first.
    home.add("ASAN_OPTIONS=verify_asan_link_order=0");
}

LaterClock::~LaterClock() {
    if (m_ahead) munmap(m_ahead, sizeof *m_ahead);
}

void LaterClock::advance(std::int64_t seconds) {
    if (m_ahead) std::atomic_ref(*m_ahead).fetch_add(seconds);
}

}  // namespace ravik::endtoend
