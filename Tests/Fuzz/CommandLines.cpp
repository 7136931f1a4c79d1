// A command line is whatever its process likes. One per line, each the parent of the next.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/CommandLine.h"
#include "Core/Diagnosis/Safety.h"
#include "Core/Wording/Plain.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ravik;
    std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<Proc> procs;
    for (Pid pid = 2; !text.empty() && pid < 40; ++pid) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        Proc proc;
        proc.id = pid;
        proc.ppid = pid - 1;
        proc.uid = 1000;
        proc.command = Text(line);
        proc.name = std::string(line.substr(line.rfind('/') + 1).substr(0, 15));
        procs.push_back(std::move(proc));
    }
    for (const HostKind kind : {HostKind::mac, HostKind::linux}) {
        const Host host{kind, 1000, 0, {1}, {}};
        for (const Proc& proc : procs) {
            if (Classifier::group(proc, host).empty() && !proc.command.view().empty()) __builtin_trap();
            programName(proc);
            interpretedScript(proc, host.tables());
            Classifier::agentTool(proc, host);
            Classifier::isMacOS(proc, host);
        }
        const ProcessIndex index(procs);
        const auto orphans = Classifier::orphans(procs, {}, {}, host, 1e6);
        Classifier::sessions(index, orphans, host);
        const Verdict whole = Safety::check(procs, host);
        for (const Proc& proc : procs) {
            // What forbids one process forbids every tree that holds it.
            if (Safety::check({proc}, host).isNever() && !whole.isNever()) __builtin_trap();
        }
        if (!procs.empty()) Safety::verdicts({2}, index, host);
    }
    return 0;
}
