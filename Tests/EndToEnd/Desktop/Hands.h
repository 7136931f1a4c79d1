#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <xcb/xcb.h>

namespace ravik::endtoend {

/// A place on the screen in pixels.
struct Area {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const Area&, const Area&) = default;
};

/// Somebody at the screen: moves the one pointer, presses the one keyboard, and sees which windows stand there.
class Hands {
public:
    explicit Hands(const std::string& display);
    ~Hands();
    Hands(const Hands&) = delete;
    Hands& operator=(const Hands&) = delete;

    void moveTo(int x, int y);
    /// Presses and releases a button in the middle of it: 1 left, 3 right.
    void click(const Area& area, std::uint8_t button = 1);
    /// Presses a key by X's symbol (XK_Return is 0xff0d), with the modifiers held that are named alike.
    void press(std::uint32_t symbol, const std::vector<std::uint32_t>& held = {});

    /// Where the mapped windows with that title stand, at any depth.
    std::vector<Area> windows(const std::string& title);
    /// The same by the class in WM_CLASS.
    std::vector<Area> windowsOfClass(const std::string& name);
    /// The title of the window that has the keyboard; empty if none has it.
    std::string focusedTitle();
    /// True while somebody shows the icons of the screen's status area in the old way, embedded.
    bool ownsTray();
    /// Moves and sizes the window with that title.
    void place(const std::string& title, const Area& area);
    /// How many pixels of a place on the screen have exactly this colour, 0xRRGGBB.
    int count(const Area& area, std::uint32_t colour);
    /// Gives what is behind all windows one colour, 0xRRGGBB.
    void paintScreen(std::uint32_t colour);
    /// Every mapped window in words, for the message of a test that failed.
    std::string list();

private:
    struct Window {
        xcb_window_t id;
        Area area;
        std::string title;
        std::string className;
        bool mapped;
    };
    std::vector<Window> all();
    std::string text(xcb_window_t window, xcb_atom_t property);
    xcb_atom_t atom(const char* name);
    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);
    std::uint8_t code(std::uint32_t symbol);
    /// Returns once the server has done all that it was asked.
    void settle();

    xcb_connection_t* m_connection;
    xcb_window_t m_root = 0;
};

namespace key {
inline constexpr std::uint32_t tab = 0xff09, enter = 0xff0d, escape = 0xff1b, backspace = 0xff08, control = 0xffe3,
                               shift = 0xffe1, space = 0x20, left = 0xff51, up = 0xff52, right = 0xff53, down = 0xff54,
                               end = 0xff57;
}

}  // namespace ravik::endtoend
