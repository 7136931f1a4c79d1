#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Linux/Windows.h"

/// What is spoken over sway's socket. Pure, any thread.
namespace ravik::platform::SwayIpc {

inline constexpr std::uint32_t runCommand = 0;
inline constexpr std::uint32_t subscribe = 2;
inline constexpr std::uint32_t getTree = 4;
inline constexpr std::uint32_t windowEvent = 0x80000003;

struct Message {
    std::uint32_t type = 0;
    std::string payload;
};

std::string encode(std::uint32_t type, std::string_view payload);

/// Takes the first whole message off the front of `bytes`; absent while it is not whole. `broken` is set where the
/// bytes are no message or one larger than any tree.
std::optional<Message> take(std::string& bytes, bool& broken);

struct Tree {
    std::vector<Windows::Window> windows;
    /// Owner of the focused window; 0 if none has the focus.
    Pid focused = 0;
};
/// Reads the answer to getTree; no windows for a text that is none.
Tree parseTree(std::string_view json);

/// The owner of the window that a window event gives the focus to; 0 for every other event.
Pid focusedBy(std::string_view json);

/// True if the answer to a command says that it was carried out.
bool succeeded(std::string_view json);

}  // namespace ravik::platform::SwayIpc
