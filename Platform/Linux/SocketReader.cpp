#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <linux/unix_diag.h>
#include <sys/socket.h>

#include <cstring>
#include <system_error>

#include "Platform/Linux/Descriptor.h"
#include "Platform/Linux/Sockets.h"

namespace ravik::platform {

namespace {

constexpr std::uint8_t tcpEstablished = 1;
constexpr std::uint8_t tcpListen = 10;

/// Copies a record of the kernel out of bytes that need not be aligned; false if they are too few.
template <typename Record>
bool take(std::string_view bytes, Record& into) {
    if (bytes.size() < sizeof into) return false;
    std::memcpy(&into, bytes.data(), sizeof into);
    return true;
}

void parseAttributes(std::string_view bytes, UnixSocket& socket) {
    nlattr attribute{};
    while (take(bytes, attribute) && attribute.nla_len >= sizeof attribute && attribute.nla_len <= bytes.size()) {
        const std::string_view value = bytes.substr(sizeof attribute, attribute.nla_len - sizeof attribute);
        if (attribute.nla_type == UNIX_DIAG_NAME) {
            socket.name = value;
            // A path ends with a NUL, an abstract name begins with one.
            if (!socket.name.empty() && socket.name.front() == '\0') socket.name.front() = '@';
            while (!socket.name.empty() && socket.name.back() == '\0') socket.name.pop_back();
        } else if (attribute.nla_type == UNIX_DIAG_PEER) {
            std::uint32_t peer = 0;
            if (take(value, peer)) socket.peer = peer;
        }
        const std::size_t whole = NLA_ALIGN(attribute.nla_len);
        if (whole >= bytes.size()) return;
        bytes.remove_prefix(whole);
    }
}

}  // namespace

bool parseUnixDiag(std::string_view bytes, std::vector<UnixSocket>& into) {
    nlmsghdr header{};
    while (take(bytes, header) && header.nlmsg_len >= sizeof header && header.nlmsg_len <= bytes.size()) {
        if (header.nlmsg_type == NLMSG_DONE || header.nlmsg_type == NLMSG_ERROR) return false;
        const std::string_view body = bytes.substr(sizeof header, header.nlmsg_len - sizeof header);
        unix_diag_msg message{};
        if (header.nlmsg_type == SOCK_DIAG_BY_FAMILY && take(body, message)) {
            UnixSocket socket;
            socket.inode = message.udiag_ino;
            socket.established = message.udiag_state == tcpEstablished;
            socket.listens = message.udiag_state == tcpListen;
            parseAttributes(body.substr(sizeof message), socket);
            into.push_back(std::move(socket));
        }
        const std::size_t whole = NLMSG_ALIGN(header.nlmsg_len);
        if (whole >= bytes.size()) break;
        bytes.remove_prefix(whole);
    }
    return true;
}

std::optional<std::vector<UnixSocket>> readUnixSockets() {
    const Descriptor link(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
    if (!link) return std::nullopt;
    // The kernel answers at once; a wait without end would hold up the whole reading.
    const timeval patience{.tv_sec = 1, .tv_usec = 0};
    setsockopt(link.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);

    struct {
        nlmsghdr header;
        unix_diag_req body;
    } request{};
    request.header.nlmsg_len = sizeof request;
    request.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.body.sdiag_family = AF_UNIX;
    request.body.udiag_states = ~0U;
    request.body.udiag_show = UDIAG_SHOW_NAME | UDIAG_SHOW_PEER;
    if (send(link.get(), &request, sizeof request, 0) < 0) return std::nullopt;

    std::vector<UnixSocket> sockets;
    std::string buffer(std::size_t{64} * 1024, '\0');
    while (true) {
        const ssize_t got = recv(link.get(), buffer.data(), buffer.size(), 0);
        if (got <= 0) return std::nullopt;
        const std::string_view bytes(buffer.data(), static_cast<std::size_t>(got));
        nlmsghdr first{};
        if (take(bytes, first) && first.nlmsg_type == NLMSG_ERROR) return std::nullopt;
        if (!parseUnixDiag(bytes, sockets)) return sockets;
    }
}

std::vector<std::uint64_t> readSocketInodes(const std::filesystem::path& folder) {
    std::vector<std::uint64_t> inodes;
    std::error_code error;
    std::filesystem::directory_iterator at(folder / "fd", error);
    for (; !error && at != std::filesystem::directory_iterator(); at.increment(error)) {
        std::error_code gone;
        const std::filesystem::path link = std::filesystem::read_symlink(at->path(), gone);
        if (gone) continue;
        if (const std::uint64_t inode = socketInode(link.native()); inode != 0) inodes.push_back(inode);
    }
    return inodes;
}

}  // namespace ravik::platform
