#include "Tests/EndToEnd/Desktop/Hands.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include <fmt/format.h>
#include <unistd.h>
#include <xcb/xtest.h>

namespace ravik::endtoend {

namespace {

/// A menu that a press opens takes a release in the same moment for its own.
constexpr useconds_t clickLasts = 80'000;

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

Area areaIn(xcb_connection_t* connection, xcb_window_t window, xcb_window_t root, Area parent) {
    const Owned<xcb_get_geometry_reply_t> shape(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    if (!shape) return {};
    if (window == root) return {0, 0, shape->width, shape->height};
    return {parent.x + shape->x + shape->border_width, parent.y + shape->y + shape->border_width, shape->width,
            shape->height};
}

}  // namespace

Hands::Hands(const std::string& display) : m_connection(xcb_connect(display.c_str(), nullptr)) {
    if (xcb_connection_has_error(m_connection) == 0)
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
}

Hands::~Hands() { xcb_disconnect(m_connection); }

void Hands::settle() {
    const Owned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

void Hands::fake(std::uint8_t type, std::uint8_t detail, int x, int y) {
    xcb_test_fake_input(m_connection, type, detail, XCB_CURRENT_TIME, m_root, static_cast<std::int16_t>(x),
                        static_cast<std::int16_t>(y), 0);
}

void Hands::moveTo(int x, int y) {
    fake(XCB_MOTION_NOTIFY, 0, x, y);
    settle();
}

void Hands::click(const Area& area, std::uint8_t button) {
    moveTo(area.x + area.width / 2, area.y + area.height / 2);
    fake(XCB_BUTTON_PRESS, button);
    settle();
    usleep(clickLasts);
    fake(XCB_BUTTON_RELEASE, button);
    settle();
}

std::uint8_t Hands::code(std::uint32_t symbol) {
    const xcb_setup_t* setup = xcb_get_setup(m_connection);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const Owned<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        m_connection, xcb_get_keyboard_mapping(m_connection, setup->min_keycode, count), nullptr));
    if (!mapping) return 0;
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    for (int at = 0; at < count; ++at) {
        if (symbols[at * mapping->keysyms_per_keycode] == symbol)
            return static_cast<std::uint8_t>(setup->min_keycode + at);
    }
    return 0;
}

void Hands::press(std::uint32_t symbol, const std::vector<std::uint32_t>& held) {
    for (const std::uint32_t modifier : held) fake(XCB_KEY_PRESS, code(modifier));
    fake(XCB_KEY_PRESS, code(symbol));
    fake(XCB_KEY_RELEASE, code(symbol));
    for (const std::uint32_t modifier : held) fake(XCB_KEY_RELEASE, code(modifier));
    settle();
}

xcb_atom_t Hands::atom(const char* name) {
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::string Hands::text(xcb_window_t window, xcb_atom_t property) {
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_connection, xcb_get_property(m_connection, 0, window, property, XCB_ATOM_ANY, 0, 256), nullptr));
    if (!reply) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::vector<Hands::Window> Hands::all() {
    const xcb_atom_t title = atom("_NET_WM_NAME");
    std::vector<Window> found{{m_root, areaIn(m_connection, m_root, m_root, {}), "", "", true}};
    for (std::size_t at = 0; at < found.size(); ++at) {
        const Window parent = found[at];
        const Owned<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, parent.id), nullptr));
        if (!tree) continue;
        for (int child = 0; child < xcb_query_tree_children_length(tree.get()); ++child) {
            const xcb_window_t id = xcb_query_tree_children(tree.get())[child];
            const Owned<xcb_get_window_attributes_reply_t> attributes(
                xcb_get_window_attributes_reply(m_connection, xcb_get_window_attributes(m_connection, id), nullptr));
            if (!attributes) continue;
            // Two words, each with its end: the instance and the class.
            const std::string words = text(id, XCB_ATOM_WM_CLASS);
            const std::size_t end = words.find('\0');
            const std::string name = end == words.npos ? "" : words.substr(end + 1, words.size() - end - 2);
            found.push_back({id, areaIn(m_connection, id, m_root, parent.area), text(id, title), name,
                             attributes->map_state == XCB_MAP_STATE_VIEWABLE});
        }
    }
    return found;
}

void Hands::paintScreen(std::uint32_t colour) {
    xcb_change_window_attributes(m_connection, m_root, XCB_CW_BACK_PIXEL, &colour);
    xcb_clear_area(m_connection, 0, m_root, 0, 0, 0, 0);
    settle();
}

void Hands::place(const std::string& title, const Area& area) {
    const std::uint32_t values[]{static_cast<std::uint32_t>(area.x), static_cast<std::uint32_t>(area.y),
                                 static_cast<std::uint32_t>(area.width), static_cast<std::uint32_t>(area.height)};
    constexpr std::uint16_t geometry =
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
    for (const Window& window : all()) {
        if (window.mapped && window.title == title) xcb_configure_window(m_connection, window.id, geometry, values);
    }
    settle();
}

int Hands::count(const Area& area, std::uint32_t colour) {
    const Owned<xcb_get_image_reply_t> image(xcb_get_image_reply(
        m_connection,
        xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root, static_cast<std::int16_t>(area.x),
                      static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
                      static_cast<std::uint16_t>(area.height), ~0U),
        nullptr));
    if (!image) return 0;
    // Four bytes a pixel at a depth of 24, blue first.
    const std::uint8_t* bytes = xcb_get_image_data(image.get());
    int found = 0;
    for (int at = 0; at + 3 < xcb_get_image_data_length(image.get()); at += 4) {
        const std::uint32_t pixel = bytes[at] | bytes[at + 1] << 8U | bytes[at + 2] << 16U;
        if (pixel == colour) ++found;
    }
    return found;
}

std::string Hands::list() {
    std::string lines;
    for (const Window& window : all()) {
        if (!window.mapped) continue;
        lines += fmt::format("{} \"{}\" {}x{} at {},{}\n", window.className, window.title, window.area.width,
                             window.area.height, window.area.x, window.area.y);
    }
    return lines;
}

bool Hands::ownsTray() {
    const Owned<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, atom("_NET_SYSTEM_TRAY_S0")), nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

std::string Hands::focusedTitle() {
    const Owned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    return reply && reply->focus > XCB_INPUT_FOCUS_POINTER_ROOT ? text(reply->focus, atom("_NET_WM_NAME")) : "";
}

std::vector<Area> Hands::windows(const std::string& title) {
    std::vector<Area> areas;
    for (const Window& window : all()) {
        if (window.mapped && window.title == title) areas.push_back(window.area);
    }
    return areas;
}

std::vector<Area> Hands::windowsOfClass(const std::string& name) {
    std::vector<Area> areas;
    for (const Window& window : all()) {
        if (window.mapped && window.className == name) areas.push_back(window.area);
    }
    return areas;
}

}  // namespace ravik::endtoend
