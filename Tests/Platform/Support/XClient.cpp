#include "Tests/Platform/Support/XClient.h"

#include <cstring>

#include <unistd.h>
#include <xcb/xcb.h>

namespace ravik::platform {

namespace {

xcb_atom_t atom(xcb_connection_t* connection, const char* name) {
    auto* reply = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr);
    if (!reply) _exit(1);
    const xcb_atom_t found = reply->atom;
    std::free(reply);
    return found;
}

}  // namespace

void showXClient(const std::string& display, OnClose onClose, const std::function<void()>& mapped) {
    xcb_connection_t* connection = xcb_connect(display.c_str(), nullptr);
    if (xcb_connection_has_error(connection)) _exit(1);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 10, 10, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    const xcb_atom_t protocols = atom(connection, "WM_PROTOCOLS");
    const xcb_atom_t deleteWindow = atom(connection, "WM_DELETE_WINDOW");
    if (onClose != OnClose::knowNothing) {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, protocols, XCB_ATOM_ATOM, 32, 1, &deleteWindow);
    }
    xcb_map_window(connection, window);
    // An answer to anything shows that the server has got this far.
    atom(connection, "WM_STATE");
    if (mapped) mapped();
    while (xcb_generic_event_t* event = xcb_wait_for_event(connection)) {
        const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event);
        const bool asked = (event->response_type & 0x7f) == XCB_CLIENT_MESSAGE && message->type == protocols &&
                           message->data.data32[0] == deleteWindow;
        std::free(event);
        if (asked && onClose == OnClose::quit) return;
    }
}

Pid startXClient(const std::string& display, OnClose onClose, Reaper& reaper) {
    const PidPipe pipe;
    const Pid pid = reaper.add(forkChild([&] { showXClient(display, onClose, [&] { pipe.tell(getpid()); }); }));
    return pipe.hear() == pid ? pid : 0;
}

}  // namespace ravik::platform
