#include "Tests/Platform/Support/Desktop.h"

#include <csignal>

#include <fcntl.h>
#include <glib.h>
#include <poll.h>
#include <unistd.h>

#include "Platform/Linux/ApplicationBus.h"

namespace ravik::platform {

std::string OwnServer::start(std::vector<std::string> words, const std::vector<std::string>& environment) {
    // The end that the server gets must not be closed when it is started, and no other end may stay open in it.
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    fcntl(ends[1], F_SETFD, 0);
    for (std::string& word : words) {
        if (const std::size_t at = word.find("{fd}"); at != word.npos) word.replace(at, 4, std::to_string(ends[1]));
    }
    m_pid = m_reaper.add(startProgram(words, environment));
    close(ends[1]);
    std::string line;
    pollfd ready{ends[0], POLLIN, 0};
    char byte = 0;
    while (poll(&ready, 1, 10'000) == 1 && read(ends[0], &byte, 1) == 1 && byte != '\n') line += byte;
    close(ends[0]);
    return byte == '\n' ? line : "";
}

OwnXServer::OwnXServer(const std::string& screen) {
    const std::string number =
        start({"Xvfb", "-displayfd", "{fd}", "-screen", "0", screen, "-nolisten", "tcp", "-noreset"});
    if (!number.empty()) m_display = ":" + number;
}

OwnWindowManager::OwnWindowManager(const OwnXServer& server) {
    m_home.write("rc.xml",
                 "<?xml version=\"1.0\"?><openbox_config xmlns=\"http://openbox.org/3.4/rc\">"
                 "<focus><focusNew>yes</focusNew></focus></openbox_config>");
    // It says that it manages windows a while before it takes new ones.
    const std::filesystem::path ready = m_home.path() / "ready";
    m_pid = m_reaper.add(startProgram(
        {"openbox", "--sm-disable", "--config-file", m_home.path() / "rc.xml", "--startup", "touch " + ready.native()},
        {server.variable(), "HOME=" + m_home.path().native(), "XDG_CONFIG_HOME=" + m_home.path().native(),
         "XDG_CACHE_HOME=" + m_home.path().native()}));
    m_started = m_pid > 0 && waitUntil([&] { return std::filesystem::exists(ready); });
}

OwnBus::OwnBus(const std::vector<std::string>& services, const std::string& address) {
    const std::filesystem::path offered = m_folder.path() / "services";
    std::filesystem::create_directory(offered);
    for (const std::string& service : services) {
        const std::string file = service + ".service";
        std::error_code error;
        std::filesystem::copy_file("/usr/share/dbus-1/services/" + file, offered / file, error);
    }
    const std::string listen = address.empty() ? "unix:dir=" + m_folder.path().native() : address;
    m_folder.write("session.conf", "<busconfig><type>session</type><listen>" + listen + "</listen><servicedir>" +
                                       offered.native() +
                                       "</servicedir><auth>EXTERNAL</auth><policy context=\"default\">"
                                       "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
                                       "<allow own=\"*\"/></policy></busconfig>");
    m_address = start({"dbus-daemon", "--config-file=" + (m_folder.path() / "session.conf").native(), "--nofork",
                       "--nopidfile", "--print-address={fd}"});
}

void OwnBus::offer(const std::string& name, const std::string& exec) const {
    m_folder.write("services/" + name + ".service", "[D-BUS Service]\nName=" + name + "\nExec=" + exec + "\n");
    // It tells its address before it can be told to look again: the signal would end it. Who is greeted finds it ready.
    if (ApplicationBus(m_address).isThere()) kill(pid(), SIGHUP);
}

bool turnUntil(const std::function<bool()>& done, double seconds) {
    const gint64 end = g_get_monotonic_time() + static_cast<gint64>(seconds * 1e6);
    while (!done()) {
        if (g_get_monotonic_time() > end) return false;
        while (g_main_context_iteration(nullptr, FALSE)) {}
        g_usleep(2000);
    }
    return true;
}

}  // namespace ravik::platform
