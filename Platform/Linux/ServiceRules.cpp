#include "Platform/Linux/ServiceRules.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace ravik::platform {

namespace {

std::string_view programOf(const Proc& proc) {
    std::string_view word = proc.command.view();
    word = word.substr(0, word.find(' '));
    const std::size_t slash = word.rfind('/');
    if (slash != std::string_view::npos) word.remove_prefix(slash + 1);
    return word.substr(0, word.find(':'));
}

bool isFamilyName(std::string_view name) {
    // "tmux: server" is what the kernel calls it.
    name = name.substr(0, name.find_first_of(": "));
    static constexpr std::array<std::string_view, 12> names{"tmux",        "screen",      "SCREEN",    "zellij",
                                                            "mosh-server", "sshd",        "ssh-agent", "gpg-agent",
                                                            "dbus-daemon", "dbus-broker", "conmon",    "code-server"};
    return std::ranges::find(names, name) != names.end() || name.starts_with("containerd-shim") ||
           name.starts_with("sshd-");
}

bool isRemoteEditor(std::string_view command) {
    if (command.find("remote-dev-server") != command.npos || command.find("zed-remote-server") != command.npos) {
        return true;
    }
    // ~/.vscode-server/bin/..., and those that are built like it. What it runs as extensions is not the server.
    for (std::size_t at = command.find("-server"); at != command.npos; at = command.find("-server", at + 1)) {
        const std::size_t slash = command.rfind('/', at);
        if (slash == command.npos || slash + 1 >= command.size() || command[slash + 1] != '.') continue;
        const std::string_view rest = command.substr(at);
        const std::size_t end = rest.find('/');
        if (end == rest.npos) continue;
        const std::string_view below = rest.substr(end);
        if (below.starts_with("/bin/") || below.starts_with("/cli/") || below.starts_with("/code-")) return true;
    }
    return false;
}

}  // namespace

bool livesAloneOnPurpose(const Proc& proc) {
    if (isFamilyName(proc.name)) return true;
    const std::string_view command = proc.command.view();
    const std::string_view program = programOf(proc);
    if (isFamilyName(program)) return true;
    const auto says = [&](std::string_view word) { return command.find(word) != command.npos; };
    if (program == "adb" || proc.name == "adb") return says(" fork-server") || says(" start-server");
    if (program.starts_with("emacs") || proc.name.starts_with("emacs")) {
        return says(" --daemon") || says(" --bg-daemon") || says(" --fg-daemon");
    }
    return says("org.gradle.launcher.daemon") || isRemoteEditor(command);
}

Pid sessionOf(std::string_view stat) {
    // The name in brackets may hold anything, blanks and brackets too. Behind it: state, parent, group, session.
    std::size_t at = stat.rfind(')');
    if (at == stat.npos) return 0;
    ++at;
    for (int field = 0; field < 3; ++field) {
        at = stat.find(' ', stat.find_first_not_of(' ', at));
        if (at == stat.npos) return 0;
    }
    at = stat.find_first_not_of(' ', at);
    if (at == stat.npos) return 0;
    Pid session = 0;
    std::from_chars(stat.data() + at, stat.data() + stat.size(), session);
    return session;
}

Families::Families(const std::vector<Proc>& procs) : m_procs(procs) {
    m_children.reserve(procs.size());
    m_parents.reserve(procs.size());
    for (const Proc& proc : procs) {
        m_children[proc.ppid].push_back(&proc);
        m_parents.emplace(proc.id, proc.ppid);
    }
}

PidSet Families::tree(Pid root) const {
    PidSet found{root};
    Pids stack{root};
    while (!stack.empty()) {
        const auto children = m_children.find(stack.back());
        stack.pop_back();
        if (children == m_children.end()) continue;
        for (const Proc* child : children->second) {
            if (found.insert(child->id).second) stack.push_back(child->id);
        }
    }
    return found;
}

PidSet Families::below(const std::function<bool(const Proc&)>& isHead,
                       const std::function<bool(const Proc&, const Proc&)>& strayed) const {
    PidSet found;
    std::vector<const Proc*> stack;
    for (const Proc& proc : m_procs) {
        if (isHead(proc) && found.insert(proc.id).second) stack.push_back(&proc);
    }
    while (!stack.empty()) {
        const Proc* parent = stack.back();
        stack.pop_back();
        const auto children = m_children.find(parent->id);
        if (children == m_children.end()) continue;
        for (const Proc* child : children->second) {
            if (!strayed(*child, *parent) && found.insert(child->id).second) stack.push_back(child);
        }
    }
    return found;
}

PidSet Families::ancestry(Pid pid) const {
    PidSet found;
    for (auto at = m_parents.find(pid); at != m_parents.end(); at = m_parents.find(at->second)) {
        if (!found.insert(at->first).second) break;
    }
    return found;
}

void AdoptionWatch::observe(const std::vector<Proc>& procs) {
    std::unordered_map<Pid, Known> now;
    now.reserve(procs.size());
    Pids foster;
    for (const Proc& proc : procs) {
        Known& seen = now[proc.id];
        seen = {proc.started, proc.startTicks, proc.ppid};
        const auto before = m_known.find(proc.id);
        if (before == m_known.end()) continue;
        const Known& was = before->second;
        if (was.started != seen.started || was.startTicks != seen.startTicks) continue;
        seen.adopted = was.adopted;
        seen.adopts = was.adopts;
        // A process gets another parent in one way only: its own has gone.
        if (was.parent != seen.parent && seen.parent > 0) {
            seen.adopted = true;
            foster.push_back(seen.parent);
        }
    }
    for (const Pid pid : foster) {
        if (const auto at = now.find(pid); at != now.end()) at->second.adopts = true;
    }
    m_known = std::move(now);
    m_adopters.clear();
    for (const auto& [pid, known] : m_known) {
        if (known.adopts) m_adopters.insert(pid);
    }
}

bool AdoptionWatch::sawAdoption(Pid pid) const {
    const auto at = m_known.find(pid);
    return at != m_known.end() && at->second.adopted;
}

}  // namespace ravik::platform
