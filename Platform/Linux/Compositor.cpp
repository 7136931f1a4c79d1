#include "Platform/Linux/Compositor.h"

#include <cstdlib>

#include <fmt/format.h>

#include "Platform/Compositor.h"
#include "Platform/Linux/XConnection.h"

namespace ravik {

bool isComposited() {
    const char* display = std::getenv("DISPLAY");
    // Wayland is always composed, and what of X runs there as well.
    if (!display || !*display || std::getenv("WAYLAND_DISPLAY")) return true;
    return platform::isComposited(display);
}

namespace platform {

bool isComposited(const std::string& display) {
    const auto x = display.empty() ? nullptr : XConnection::open(display);
    if (!x) return true;
    const std::string name = fmt::format("_NET_WM_CM_S{}", x->screen());
    const XReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        x->get(), xcb_intern_atom(x->get(), 1, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE) return false;
    const XReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(x->get(), xcb_get_selection_owner(x->get(), atom->atom), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

}  // namespace platform

}  // namespace ravik
