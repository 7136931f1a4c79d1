// The desktop app as far as other starts of it see it, for the tests to start and to ask.
//
//   ravik-test-desktop-app FD FILE [ACTION [PARAMETER]]
//
// Tries to be the app on the bus and in the run-time folder of its environment. Writes a line to FD: "first", or
// "other PID heard" or "other PID unheard", with which it ends. The first goes on and writes a line
// "ACTION|PARAMETER|TOKEN" to FILE whenever it is asked; "quit" ends it.

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "Platform/Linux/GLibLoop.h"
#include "Platform/Linux/LinuxDesktopApp.h"

int main(int count, char** words) {
    using namespace ravik;
    if (count < 3) return 2;
    platform::DesktopAppOptions options;
    options.variable = [](const char* name) {
        const char* value = std::getenv(name);
        return std::string(value ? value : "");
    };
    options.bus = options.variable("DBUS_SESSION_BUS_ADDRESS");
    options.runtime = options.variable("XDG_RUNTIME_DIR");
    options.uid = geteuid();
    platform::GLibLoop loop;
    platform::LinuxDesktopApp app(options);
    app.onActivation([&](const Activation& asked) {
        std::ofstream(words[2], std::ios::app) << asked.action + "|" + asked.parameter + "|" + asked.token + "\n";
        if (asked.action == "quit") loop.quit();
    });
    const auto other = app.claim({count > 3 ? words[3] : "", count > 4 ? words[4] : "", ""});
    const std::string told =
        other ? "other " + std::to_string(other->pid) + (other->heard ? " heard\n" : " unheard\n") : "first\n";
    if (write(std::atoi(words[1]), told.data(), told.size()) != static_cast<ssize_t>(told.size())) return 1;
    if (!other) loop.run();
    return 0;
}
