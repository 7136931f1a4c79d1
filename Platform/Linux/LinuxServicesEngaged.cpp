#include <algorithm>
#include <map>

#include "Platform/Linux/LinuxServices.h"
#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace {

namespace fs = std::filesystem;

/// Connections of the network namespaces in which the candidates live, each read once.
class Tables {
public:
    Tables(const fs::path& root, Pid self, const std::function<std::optional<std::vector<UnixSocket>>()>& unixSockets)
        : m_root(root), m_own(space(self)), m_unixSockets(unixSockets) {}

    const SocketTable& of(Pid pid) {
        const std::string here = space(pid);
        const auto known = m_tables.find(here);
        return known != m_tables.end() ? known->second : m_tables.emplace(here, read(pid, here == m_own)).first->second;
    }

private:
    std::string space(Pid pid) const {
        std::error_code error;
        return fs::read_symlink(m_root / std::to_string(pid) / "ns/net", error).native();
    }

    SocketTable read(Pid pid, bool own) const {
        const std::string net = (m_root / std::to_string(pid) / "net/").native();
        std::vector<InetSocket> inet;
        const auto tcp = readFile(net + "tcp");
        if (tcp) parseInetSockets(*tcp, inet);
        // Absent where the computer has no IPv6.
        parseInetSockets(readFile(net + "tcp6").value_or(""), inet);

        auto local = own && m_unixSockets ? m_unixSockets() : std::nullopt;
        bool complete = tcp && local;
        if (!local) {
            const auto text = readFile(net + "unix");
            complete = tcp && text;
            local.emplace();
            parseUnixSockets(text.value_or(""), *local);
        }
        return {std::move(inet), std::move(*local), complete};
    }

    fs::path m_root;
    std::string m_own;
    std::function<std::optional<std::vector<UnixSocket>>()> m_unixSockets;
    std::map<std::string, SocketTable> m_tables;
};

}  // namespace

PidSet LinuxServices::engaged(const Pids& candidates, const std::vector<Proc>& procs) {
    PidSet found;
    if (candidates.empty()) return found;
    const PidSet owners = m_options.windowOwners ? m_options.windowOwners() : PidSet{};
    const Families families(procs);
    Tables tables(m_options.procRoot, m_options.self, m_options.unixSockets);
    const auto inodes = [&](Pid pid) { return readSocketInodes(m_options.procRoot / std::to_string(pid)); };

    // Inode of each other end to the candidates that serve it.
    std::unordered_multimap<std::uint64_t, Pid> served;
    std::unordered_map<Pid, PidSet> trees;
    for (const Pid candidate : candidates) {
        const PidSet& tree = trees.emplace(candidate, families.tree(candidate)).first->second;
        for (const Pid member : tree) {
            if (owners.contains(member)) found.insert(candidate);
            if (found.contains(candidate)) break;
            for (const std::uint64_t inode : inodes(member)) {
                const SocketTable::Served at = tables.of(member).served(inode);
                if (at.unknown || at.showsWindows) found.insert(candidate);
                if (at.peer != 0) served.emplace(at.peer, candidate);
            }
        }
    }
    if (served.empty()) return found;
    for (const Proc& proc : procs) {
        if (proc.uid != m_options.uid) continue;
        for (const std::uint64_t inode : inodes(proc.id)) {
            const auto [first, last] = served.equal_range(inode);
            for (auto at = first; at != last; ++at) {
                if (!trees.at(at->second).contains(proc.id)) found.insert(at->second);
            }
        }
    }
    return found;
}

}  // namespace ravik::platform
