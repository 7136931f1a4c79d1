#include "Platform/Linux/XConnection.h"

#include <unistd.h>
#include <xcb/res.h>

#include <string_view>

namespace ravik::platform {

namespace {

xcb_atom_t atom(xcb_connection_t* connection, std::string_view name) {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/// Client ids came with version 1.2 of the extension.
bool canNameClients(xcb_connection_t* connection) {
    const xcb_query_extension_reply_t* known = xcb_get_extension_data(connection, &xcb_res_id);
    if (!known || !known->present) return false;
    const XReply<xcb_res_query_version_reply_t> version(
        xcb_res_query_version_reply(connection, xcb_res_query_version(connection, 1, 2), nullptr));
    return version && (version->server_major > 1 || (version->server_major == 1 && version->server_minor >= 2));
}

Pid localPid(const xcb_res_client_id_value_t* value) {
    if (!(value->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) || value->length < 4) return 0;
    return static_cast<Pid>(*xcb_res_client_id_value_value(value));
}

xcb_res_query_client_ids_cookie_t askClient(xcb_connection_t* connection, std::uint32_t resource) {
    const xcb_res_client_id_spec_t spec{resource, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    return xcb_res_query_client_ids(connection, 1, &spec);
}

Pid clientOf(xcb_connection_t* connection, xcb_res_query_client_ids_cookie_t cookie) {
    const XReply<xcb_res_query_client_ids_reply_t> reply(xcb_res_query_client_ids_reply(connection, cookie, nullptr));
    if (!reply) return 0;
    for (auto at = xcb_res_query_client_ids_ids_iterator(reply.get()); at.rem > 0; xcb_res_client_id_value_next(&at)) {
        if (const Pid pid = localPid(at.data); pid > 0) return pid;
    }
    return 0;
}

}  // namespace

std::unique_ptr<XConnection> XConnection::open(const std::string& display) {
    std::unique_ptr<XConnection> made(new XConnection);
    xcb_connection_t* connection = xcb_connect(display.empty() ? nullptr : display.c_str(), &made->m_screen);
    if (xcb_connection_has_error(connection) ||
        !xcb_ewmh_init_atoms_replies(&made->m_ewmh, xcb_ewmh_init_atoms(connection, &made->m_ewmh), nullptr)) {
        xcb_disconnect(connection);
        made->m_ewmh = {};
        return nullptr;
    }
    made->m_root = made->m_ewmh.screens[made->m_screen]->root;
    made->m_namesClients = canNameClients(connection);
    made->m_deleteWindow = atom(connection, "WM_DELETE_WINDOW");
    made->m_window = atom(connection, "WINDOW");
    char host[256]{};
    if (gethostname(host, sizeof host - 1) == 0) made->m_host = host;
    return made;
}

XConnection::~XConnection() {
    if (!m_ewmh.connection) return;
    xcb_connection_t* connection = m_ewmh.connection;
    xcb_ewmh_connection_wipe(&m_ewmh);
    xcb_disconnect(connection);
}

Pids XConnection::ownersOf(const std::vector<xcb_window_t>& windows) {
    // All questions go out before the first answer is waited for.
    struct Asked {
        xcb_res_query_client_ids_cookie_t client;
        xcb_get_property_cookie_t pid;
        xcb_get_property_cookie_t machine;
    };
    std::vector<Asked> asked;
    asked.reserve(windows.size());
    for (const xcb_window_t window : windows) {
        asked.push_back({m_namesClients ? askClient(get(), window) : xcb_res_query_client_ids_cookie_t{},
                         xcb_ewmh_get_wm_pid(&m_ewmh, window),
                         xcb_get_property(get(), 0, window, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, 0, 64)});
    }
    Pids owners;
    owners.reserve(windows.size());
    for (const Asked& at : asked) {
        Pid owner = m_namesClients ? clientOf(get(), at.client) : 0;
        std::uint32_t said = 0;
        const bool says = xcb_ewmh_get_wm_pid_reply(&m_ewmh, at.pid, &said, nullptr) != 0;
        const XReply<xcb_get_property_reply_t> machine(xcb_get_property_reply(get(), at.machine, nullptr));
        if (owner == 0 && says) {
            std::string_view name;
            if (machine) {
                name = {static_cast<const char*>(xcb_get_property_value(machine.get())),
                        static_cast<std::size_t>(xcb_get_property_value_length(machine.get()))};
            }
            if (name.empty() || name == m_host) owner = static_cast<Pid>(said);
        }
        owners.push_back(owner);
    }
    return owners;
}

PidSet XConnection::windowOwners() {
    PidSet owners;
    if (m_namesClients) {
        const XReply<xcb_res_query_clients_reply_t> clients(
            xcb_res_query_clients_reply(get(), xcb_res_query_clients(get()), nullptr));
        if (!clients) return owners;
        struct Asked {
            xcb_res_query_client_resources_cookie_t resources;
            xcb_res_query_client_ids_cookie_t client;
        };
        std::vector<Asked> asked;
        for (auto at = xcb_res_query_clients_clients_iterator(clients.get()); at.rem > 0; xcb_res_client_next(&at)) {
            const std::uint32_t base = at.data->resource_base;
            if (base == 0) continue;  // the server, with the root window
            asked.push_back({xcb_res_query_client_resources(get(), base), askClient(get(), base)});
        }
        for (const Asked& at : asked) {
            const XReply<xcb_res_query_client_resources_reply_t> held(
                xcb_res_query_client_resources_reply(get(), at.resources, nullptr));
            const Pid owner = clientOf(get(), at.client);
            if (!held || owner <= 0) continue;
            for (auto type = xcb_res_query_client_resources_types_iterator(held.get()); type.rem > 0;
                 xcb_res_type_next(&type)) {
                if (type.data->resource_type == m_window && type.data->count > 0) owners.insert(owner);
            }
        }
        return owners;
    }
    xcb_ewmh_get_windows_reply_t list{};
    if (!xcb_ewmh_get_client_list_reply(&m_ewmh, xcb_ewmh_get_client_list(&m_ewmh, m_screen), &list, nullptr)) {
        return owners;
    }
    for (const Pid owner : ownersOf({list.windows, list.windows + list.windows_len})) {
        if (owner > 0) owners.insert(owner);
    }
    xcb_ewmh_get_windows_reply_wipe(&list);
    return owners;
}

}  // namespace ravik::platform
