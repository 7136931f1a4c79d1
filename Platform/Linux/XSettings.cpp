#include <string>
#include <string_view>

#include <fmt/format.h>

#include "Platform/Linux/FdSource.h"
#include "Platform/Linux/LookSource.h"
#include "Platform/Linux/XConnection.h"
#include "Platform/Linux/XSettingsText.h"

namespace ravik::platform {

namespace {

/// Longest property read, in four bytes each.
constexpr std::uint32_t longest = 1 << 18;

class XSettings : public LookSource {
public:
    XSettings(std::unique_ptr<XConnection> connection, std::function<void()> changed)
        : m_x(std::move(connection)),
          m_changed(std::move(changed)),
          m_selection(atom(fmt::format("_XSETTINGS_S{}", m_x->screen()))),
          m_property(atom("_XSETTINGS_SETTINGS")),
          m_manager(atom("MANAGER")) {
        // A manager that comes says so on the root window.
        listen(m_x->root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        findManager();
        m_source = std::make_unique<FdSource>(
            xcb_get_file_descriptor(m_x->get()), [this] { return hasQueued(); }, [this] { return drain(); });
    }

    Look look() const override { return m_look; }

private:
    xcb_atom_t atom(std::string_view name) {
        const auto cookie = xcb_intern_atom(m_x->get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
        const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_x->get(), cookie, nullptr));
        return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    }

    void listen(xcb_window_t window, std::uint32_t events) {
        xcb_change_window_attributes(m_x->get(), window, XCB_CW_EVENT_MASK, &events);
    }

    void findManager() {
        // Between the question and the wish to hear of it, the manager must not go unseen.
        xcb_grab_server(m_x->get());
        const XReply<xcb_get_selection_owner_reply_t> owner(
            xcb_get_selection_owner_reply(m_x->get(), xcb_get_selection_owner(m_x->get(), m_selection), nullptr));
        m_owner = owner ? owner->owner : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
        if (m_owner) listen(m_owner, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
        xcb_ungrab_server(m_x->get());
        read();
    }

    void read() {
        m_look = {};
        if (m_owner) {
            const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
                m_x->get(), xcb_get_property(m_x->get(), 0, m_owner, m_property, m_property, 0, longest), nullptr));
            if (reply) {
                const auto* bytes = static_cast<const char*>(xcb_get_property_value(reply.get()));
                const auto size = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
                if (const auto values = parseXSettings({bytes, size})) m_look = lookOf(lookSettings(*values));
            }
        }
        xcb_flush(m_x->get());
    }

    /// An answer that is waited for may read events along with it.
    bool hasQueued() {
        if (!m_queued) m_queued.reset(xcb_poll_for_queued_event(m_x->get()));
        return m_queued != nullptr;
    }

    bool drain() {
        const Look before = m_look;
        while (true) {
            XReply<xcb_generic_event_t> event(m_queued ? m_queued.release() : xcb_poll_for_event(m_x->get()));
            if (!event) break;
            hear(*event);
        }
        if (m_look != before) m_changed();
        // A display that has gone takes its settings with it; what they were stays.
        return m_x->alive();
    }

    void hear(const xcb_generic_event_t& event) {
        switch (event.response_type & 0x7F) {
            case XCB_PROPERTY_NOTIFY: {
                const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
                if (notify.window == m_owner && notify.atom == m_property) read();
                break;
            }
            case XCB_DESTROY_NOTIFY: {
                const auto& notify = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
                if (notify.window == m_owner) findManager();
                break;
            }
            case XCB_CLIENT_MESSAGE: {
                const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
                if (message.type == m_manager && message.data.data32[1] == m_selection) findManager();
                break;
            }
            default: break;
        }
    }

    std::unique_ptr<XConnection> m_x;
    std::function<void()> m_changed;
    xcb_atom_t m_selection;
    xcb_atom_t m_property;
    xcb_atom_t m_manager;
    xcb_window_t m_owner = XCB_WINDOW_NONE;
    Look m_look;
    XReply<xcb_generic_event_t> m_queued;
    std::unique_ptr<FdSource> m_source;
};

}  // namespace

std::unique_ptr<LookSource> openXSettings(const std::string& display, std::function<void()> changed) {
    auto connection = XConnection::open(display);
    if (!connection) return nullptr;
    return std::make_unique<XSettings>(std::move(connection), std::move(changed));
}

}  // namespace ravik::platform
