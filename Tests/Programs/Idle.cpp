// Waits for its end, whatever it is called and whatever it is told: copied, it stands for any program that runs. Holds
// as many megabytes as RAVIK_TEST_HOLDS says, and with RAVIK_TEST_DEAF does not hear TERM.
#include <csignal>
#include <cstdlib>

#include <unistd.h>

int main() {
    if (std::getenv("RAVIK_TEST_DEAF")) std::signal(SIGTERM, SIG_IGN);
    const char* holds = std::getenv("RAVIK_TEST_HOLDS");
    const std::size_t bytes = holds ? std::strtoul(holds, nullptr, 10) << 20 : 0;
    // Touched, since a page that nobody wrote is held by nobody; volatile, since nobody reads it either.
    auto* const held = static_cast<volatile char*>(std::malloc(bytes + 1));
    for (std::size_t page = 0; held && page <= bytes; page += 4096) held[page] = 1;
    while (true) pause();
}
