#include <algorithm>
#include <chrono>
#include <span>

#include "Platform/Linux/FdSource.h"
#include "Platform/Linux/Windows.h"
#include "Platform/Linux/XConnection.h"

namespace ravik::platform {

namespace {

using Steady = std::chrono::steady_clock;

// Between two windows a window manager says for a moment that none has the focus.
constexpr auto passing = std::chrono::seconds(1);

class X11Windows : public Windows {
public:
    X11Windows(std::unique_ptr<XConnection> connection, bool focus) : m_x(std::move(connection)), m_focus(focus) {
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(m_x->get(), m_x->root(), XCB_CW_EVENT_MASK, &events);
        xcb_flush(m_x->get());
        m_source = std::make_unique<FdSource>(
            xcb_get_file_descriptor(m_x->get()), [this] { return hasQueued(); }, [this] { return drain(); });
    }

    std::vector<Window> list() override {
        const std::vector<xcb_window_t> windows = clients();
        const Pids owners = m_x->ownersOf(windows);
        struct Asked {
            xcb_get_property_cookie_t protocols;
            xcb_get_property_cookie_t types;
        };
        std::vector<Asked> asked;
        for (const xcb_window_t window : windows) {
            asked.push_back({askProtocols(window), xcb_ewmh_get_wm_window_type(&m_x->ewmh(), window)});
        }
        std::vector<Window> found;
        for (std::size_t at = 0; at < windows.size(); ++at) {
            const bool takes = holdsAtom(asked[at].protocols, m_x->deleteWindow());
            const bool furniture = isFurniture(asked[at].types);
            if (owners[at] > 0) found.push_back({windows[at], owners[at], takes && !furniture});
        }
        return found;
    }

    std::optional<Pid> active() override {
        if (!knowsFocus()) return {};
        if (const xcb_window_t window = activeWindow(); window != 0) {
            if (const Pid pid = owner(window); pid > 0) return note(pid);
            return {};
        }
        if (m_last > 0 && Steady::now() - m_lastAt < passing) return m_last;
        return {};
    }

    bool knowsFocus() override { return m_focus && m_x->alive() && supports(m_x->ewmh()._NET_ACTIVE_WINDOW); }

    void onActive(std::function<void(Pid)> observer) override { m_observer = std::move(observer); }

    bool close(const Window& window) override {
        const auto target = static_cast<xcb_window_t>(window.id);
        if (!window.takesClose || !m_x->alive()) return false;
        if (supports(m_x->ewmh()._NET_CLOSE_WINDOW)) {
            xcb_ewmh_request_close_window(&m_x->ewmh(), m_x->screen(), target, XCB_CURRENT_TIME,
                                          XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER);
        } else {
            xcb_client_message_event_t message{};
            message.response_type = XCB_CLIENT_MESSAGE;
            message.format = 32;
            message.window = target;
            message.type = m_x->ewmh().WM_PROTOCOLS;
            message.data.data32[0] = m_x->deleteWindow();
            message.data.data32[1] = XCB_CURRENT_TIME;
            xcb_send_event(m_x->get(), 0, target, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
        }
        return xcb_flush(m_x->get()) > 0;
    }

private:
    xcb_get_property_cookie_t askProtocols(xcb_window_t window) {
        return xcb_get_property(m_x->get(), 0, window, m_x->ewmh().WM_PROTOCOLS, XCB_ATOM_ATOM, 0, 64);
    }

    bool holdsAtom(xcb_get_property_cookie_t cookie, xcb_atom_t wanted) {
        const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_x->get(), cookie, nullptr));
        if (!reply || reply->format != 32) return false;
        const std::span atoms(static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get())), reply->value_len);
        return std::ranges::find(atoms, wanted) != atoms.end();
    }

    bool isFurniture(xcb_get_property_cookie_t cookie) {
        xcb_ewmh_get_atoms_reply_t types{};
        if (!xcb_ewmh_get_wm_window_type_reply(&m_x->ewmh(), cookie, &types, nullptr)) return false;
        const std::span atoms(types.atoms, types.atoms_len);
        const bool found = std::ranges::any_of(atoms, [&](xcb_atom_t type) {
            return type == m_x->ewmh()._NET_WM_WINDOW_TYPE_DESKTOP || type == m_x->ewmh()._NET_WM_WINDOW_TYPE_DOCK;
        });
        xcb_ewmh_get_atoms_reply_wipe(&types);
        return found;
    }

    std::vector<xcb_window_t> clients() {
        xcb_ewmh_get_windows_reply_t list{};
        const auto cookie = xcb_ewmh_get_client_list(&m_x->ewmh(), m_x->screen());
        if (!xcb_ewmh_get_client_list_reply(&m_x->ewmh(), cookie, &list, nullptr)) return {};
        std::vector<xcb_window_t> windows(list.windows, list.windows + list.windows_len);
        xcb_ewmh_get_windows_reply_wipe(&list);
        return windows;
    }

    /// True for a hint that the window manager, if there is one, says it understands.
    bool supports(xcb_atom_t hint) {
        xcb_window_t manager = 0;
        const auto check = xcb_ewmh_get_supporting_wm_check(&m_x->ewmh(), m_x->root());
        const auto hints =
            xcb_get_property(m_x->get(), 0, m_x->root(), m_x->ewmh()._NET_SUPPORTED, XCB_ATOM_ATOM, 0, 1024);
        const bool managed =
            xcb_ewmh_get_supporting_wm_check_reply(&m_x->ewmh(), check, &manager, nullptr) && manager != 0;
        return holdsAtom(hints, hint) && managed;
    }

    xcb_window_t activeWindow() {
        xcb_window_t window = 0;
        const auto cookie = xcb_ewmh_get_active_window(&m_x->ewmh(), m_x->screen());
        return xcb_ewmh_get_active_window_reply(&m_x->ewmh(), cookie, &window, nullptr) ? window : 0;
    }

    Pid owner(xcb_window_t window) { return m_x->ownersOf({window}).front(); }

    Pid note(Pid pid) {
        m_last = pid;
        m_lastAt = Steady::now();
        return pid;
    }

    bool hasQueued() {
        if (m_queued || !m_x->alive()) return true;
        xcb_flush(m_x->get());
        m_queued.reset(xcb_poll_for_queued_event(m_x->get()));
        return m_queued != nullptr;
    }

    bool drain() {
        bool moved = false;
        for (auto event = std::move(m_queued); event || (event = next()); event.reset()) {
            if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY) continue;
            const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event.get());
            moved |= change->window == m_x->root() && change->atom == m_x->ewmh()._NET_ACTIVE_WINDOW;
        }
        if (!m_x->alive()) return false;
        if (moved && m_focus) tell();
        return true;
    }

    XReply<xcb_generic_event_t> next() { return XReply<xcb_generic_event_t>(xcb_poll_for_event(m_x->get())); }

    void tell() {
        const xcb_window_t window = activeWindow();
        const Pid pid = window != 0 ? owner(window) : 0;
        if (pid <= 0) {
            // The moment in which the focus was last known to be somewhere.
            m_lastAt = Steady::now();
            return;
        }
        note(pid);
        if (m_observer) m_observer(pid);
    }

    std::unique_ptr<XConnection> m_x;
    bool m_focus;
    std::function<void(Pid)> m_observer;
    Pid m_last = 0;
    Steady::time_point m_lastAt;
    XReply<xcb_generic_event_t> m_queued;
    std::unique_ptr<FdSource> m_source;
};

}  // namespace

std::unique_ptr<Windows> makeX11Windows(const std::string& display, bool focus) {
    auto connection = XConnection::open(display);
    return connection ? std::make_unique<X11Windows>(std::move(connection), focus) : nullptr;
}

}  // namespace ravik::platform
