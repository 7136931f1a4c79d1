#include "Tests/EndToEnd/Desktop/Daemon.h"

namespace ravik::endtoend {

Pid startNotifications(const Home& home, const Bus& bus, const std::string& chosen) {
    home.write("dunstrc",
               "[global]\n"
               "monitor = 0\n"
               "origin = bottom-right\n"
               "offset = 20x20\n"
               "width = 500\n"
               "mouse_middle_click = do_action, close_current\n"
               "mouse_right_click = context\n"
               // Its menu is any program that gives back one of the lines it is given.
               "dmenu = /bin/grep -m1 ^#" +
                   chosen +
                   "\n"
                   "[urgency_normal]\n"
                   "timeout = 0\n");
    const Pid pid = platform::startProgram({"dunst", "-conf", (home.path() / "dunstrc").native()});
    const bool isUp = platform::waitUntil([&] { return bus.owns("org.freedesktop.Notifications"); }, 20);
    return isUp ? pid : 0;
}

std::vector<Area> notifications(Hands& hands) { return hands.windowsOfClass("Dunst"); }

}  // namespace ravik::endtoend
