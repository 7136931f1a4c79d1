#pragma once

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

#include "Core/Base/Pids.h"

namespace ravik::platform {

/// Frees what xcb hands out.
struct XFree {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using XReply = std::unique_ptr<Reply, XFree>;

/// One connection to an X server. One thread at a time.
class XConnection {
public:
    /// Null if the server cannot be reached. "" is $DISPLAY.
    static std::unique_ptr<XConnection> open(const std::string& display);
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    xcb_connection_t* get() { return m_ewmh.connection; }
    xcb_ewmh_connection_t& ewmh() { return m_ewmh; }
    xcb_window_t root() const { return m_root; }
    int screen() const { return m_screen; }
    /// False once the server has gone.
    bool alive() const { return xcb_connection_has_error(m_ewmh.connection) == 0; }
    xcb_atom_t deleteWindow() const { return m_deleteWindow; }

    /// Owners of the windows, in their order: what the server knows of its client, else what the window says of
    /// itself, if it says it of this computer. 0 where neither is known.
    Pids ownersOf(const std::vector<xcb_window_t>& windows);

    /// Everybody who owns a window of any kind, seen or not.
    PidSet windowOwners();

private:
    XConnection() = default;

    xcb_ewmh_connection_t m_ewmh{};
    xcb_window_t m_root = 0;
    int m_screen = 0;
    bool m_namesClients = false;
    xcb_atom_t m_deleteWindow = 0;
    xcb_atom_t m_window = 0;
    std::string m_host;
};

}  // namespace ravik::platform
