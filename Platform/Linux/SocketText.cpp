#include <charconv>
#include <cstring>

#include "Platform/Linux/Sockets.h"

namespace ravik::platform {

namespace {

/// Takes the next word off a line.
std::string_view word(std::string_view& line) {
    const std::size_t begin = line.find_first_not_of(' ');
    if (begin == line.npos) {
        line = {};
        return {};
    }
    const std::size_t end = std::min(line.find(' ', begin), line.size());
    const std::string_view found = line.substr(begin, end - begin);
    line.remove_prefix(end);
    return found;
}

template <typename Number>
bool number(std::string_view text, Number& into, int base) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), into, base);
    return error == std::errc{} && end == text.data() + text.size() && !text.empty();
}

/// "0100007F:1F90": words of four bytes as the processor holds them, then the port.
bool end(std::string_view text, InetSocket::End& into) {
    const std::size_t colon = text.find(':');
    if ((colon != 8 && colon != 32) || !number(text.substr(colon + 1), into.port, 16)) return false;
    std::size_t at = 0;
    if (colon == 8) {
        into.address[10] = into.address[11] = 0xff;
        at = 12;
    }
    for (std::size_t begin = 0; begin < colon; begin += 8, at += 4) {
        std::uint32_t bytes = 0;
        if (!number(text.substr(begin, 8), bytes, 16)) return false;
        std::memcpy(into.address.data() + at, &bytes, 4);
    }
    return true;
}

std::string_view line(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view found = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return found;
}

}  // namespace

void parseInetSockets(std::string_view text, std::vector<InetSocket>& into) {
    while (!text.empty()) {
        std::string_view rest = line(text);
        InetSocket socket;
        word(rest);  // the slot
        unsigned state = 0;
        if (!end(word(rest), socket.local) || !end(word(rest), socket.remote) || !number(word(rest), state, 16)) {
            continue;
        }
        // Queues, timer, retransmissions, owner, timeout.
        for (int skipped = 0; skipped < 5; ++skipped) word(rest);
        if (!number(word(rest), socket.inode, 10)) continue;
        socket.established = state == 1;
        socket.listens = state == 10;
        into.push_back(socket);
    }
}

void parseUnixSockets(std::string_view text, std::vector<UnixSocket>& into) {
    while (!text.empty()) {
        std::string_view rest = line(text);
        UnixSocket socket;
        word(rest);  // address
        word(rest);  // references
        word(rest);  // protocol
        unsigned flags = 0;
        unsigned type = 0;
        unsigned state = 0;
        if (!number(word(rest), flags, 16) || !number(word(rest), type, 16) || !number(word(rest), state, 16) ||
            !number(word(rest), socket.inode, 10)) {
            continue;
        }
        socket.established = state == 3;
        socket.listens = (flags & 0x10000) != 0;
        socket.peerKnown = !socket.established;
        const std::size_t name = rest.find_first_not_of(' ');
        if (name != rest.npos) socket.name = rest.substr(name);
        into.push_back(std::move(socket));
    }
}

std::uint64_t socketInode(std::string_view link) {
    constexpr std::string_view prefix = "socket:[";
    std::uint64_t inode = 0;
    if (!link.starts_with(prefix) || !link.ends_with(']')) return 0;
    link.remove_prefix(prefix.size());
    link.remove_suffix(1);
    return number(link, inode, 10) ? inode : 0;
}

}  // namespace ravik::platform
