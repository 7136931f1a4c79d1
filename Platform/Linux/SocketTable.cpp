#include "Platform/Linux/Sockets.h"

namespace ravik::platform {

namespace {

std::uint32_t ports(std::uint16_t local, std::uint16_t remote) {
    return (static_cast<std::uint32_t>(local) << 16) | remote;
}

bool isCompositor(std::string_view name) {
    const std::size_t slash = name.rfind('/');
    return slash != name.npos && name.substr(slash + 1).starts_with("wayland-");
}

}  // namespace

SocketTable::SocketTable(std::vector<InetSocket> inet, std::vector<UnixSocket> local, bool complete)
    : m_inet(std::move(inet)), m_unix(std::move(local)), m_complete(complete) {
    for (std::size_t at = 0; at < m_inet.size(); ++at) {
        const InetSocket& socket = m_inet[at];
        if (socket.inode != 0) m_inetByInode.emplace(socket.inode, at);
        if (socket.listens) m_listening.insert(socket.local.port);
        if (socket.established) m_inetByPorts.emplace(ports(socket.local.port, socket.remote.port), at);
    }
    for (std::size_t at = 0; at < m_unix.size(); ++at) m_unixByInode.emplace(m_unix[at].inode, at);
}

const InetSocket* SocketTable::otherEnd(const InetSocket& socket) const {
    auto [at, last] = m_inetByPorts.equal_range(ports(socket.remote.port, socket.local.port));
    for (; at != last; ++at) {
        const InetSocket& other = m_inet[at->second];
        if (other.local == socket.remote && other.remote == socket.local) return &other;
    }
    return nullptr;
}

SocketTable::Served SocketTable::served(std::uint64_t inode) const {
    if (const auto at = m_inetByInode.find(inode); at != m_inetByInode.end()) {
        const InetSocket& socket = m_inet[at->second];
        if (!socket.established) return {};
        const InetSocket* other = otherEnd(socket);
        const bool isClient = m_listening.contains(socket.remote.port) && !m_listening.contains(socket.local.port);
        return other && !isClient ? Served{other->inode} : Served{};
    }
    const auto at = m_unixByInode.find(inode);
    if (at == m_unixByInode.end()) return {.unknown = !m_complete};
    const UnixSocket& socket = m_unix[at->second];
    if (!socket.established) return {};
    if (!socket.peerKnown) return {.unknown = true};
    const auto peer = m_unixByInode.find(socket.peer);
    if (peer == m_unixByInode.end()) return {};
    const UnixSocket& other = m_unix[peer->second];
    if (socket.name.empty() && !other.name.empty()) return {.showsWindows = isCompositor(other.name)};
    return {.peer = other.inode};
}

}  // namespace ravik::platform
