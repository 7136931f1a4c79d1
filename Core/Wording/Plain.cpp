#include "Core/Wording/Plain.h"

#include <algorithm>

#include <fmt/format.h>

#include "Core/Base/Utf8.h"
#include "Core/Diagnosis/Diagnoser.h"
#include "Core/Wording/Fmt.h"

namespace ravik::Plain {

namespace {

std::string replaced(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/// "Grew 1.2 → 4.0 GB in 7 min. ", or nothing.
std::string growth(const std::string& title) {
    constexpr std::string_view grew = " grew ";
    const std::size_t at = title.find(grew);
    if (at == std::string::npos) return {};
    const std::string rest = replaced(title.substr(at + grew.size()), " GB to ", " → ");
    return fmt::format("Grew {}. ", replaced(rest, "from ", ""));
}

std::string holderSentence(const Finding& finding) {
    const std::string grew = growth(finding.title);
    if (finding.evidence.starts_with("extension host")) {
        return fmt::format("{}Restarting its extensions gives back {} GB. Your windows stay open.", grew,
                           Fmt::gbByThousands(finding.gainBytes));
    }
    if (grew.empty()) return "Holds a large share of your memory right now.";
    return fmt::format("{}{} it gives it all back.", grew, finding.quits() ? "Quitting" : "Ending");
}

bool isBlank(char byte) { return std::string_view(" \t\n\v\f\r").find(byte) != std::string_view::npos; }

}  // namespace

std::string sentenceCase(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    if (text.empty()) return {};
    std::string sentence = Utf8::capitalised(text);
    if (std::string_view(".!?").find(sentence.back()) == std::string_view::npos) sentence += '.';
    return sentence;
}

std::string name(const Finding& finding, const CardFace& face, const Host& host) {
    const std::string_view id = finding.id;
    if (id == "leftovers") return "Leftovers from AI tools";
    if (id == "sessions") return "AI coding sessions";
    if (id == "thrash") return "Memory spilling to disk";
    if (id == "disk") return "Disk almost full";
    if (id == "indexing") return std::string(host.nouns().indexingName);
    if (id.starts_with("automation:")) return "Hidden browser window";
    return face.name;
}

std::string sentence(const Finding& finding, const CardFace& face, const Snapshot& snapshot, const Host& host) {
    const std::string_view id = finding.id;
    const auto aged = [&](std::string_view behind = {}) {
        return face.age ? fmt::format(" {}{}", Diagnoser::hours(*face.age), behind) : std::string();
    };
    if (finding.neverReason == keptReason) return "You asked Ravik to keep this running.";
    if (id == "leftovers") return "Left behind by coding sessions that have ended.";
    if (id == "sessions") {
        return fmt::format("{} running at once, each holding memory.",
                           std::ranges::count(snapshot.sessions, true, &AgentSession::alive));
    }
    if (id == "thrash") {
        return fmt::format("{} is writing memory to disk, which slows it.", host.nouns().yourMachineCap);
    }
    if (id == "disk") {
        return fmt::format("Low space slows {}. Look for files to delete.", host.nouns().yourMachine);
    }
    if (id == "indexing") return "Busy after big changes. It stops on its own.";
    if (id.starts_with("automation:")) return "A tool opened it" + aged(" ago") + ". It can block your own browser.";
    if (id.starts_with("db:")) return "A database left running" + aged() + ". Stop it yourself.";
    if (id.starts_with("orphan:")) {
        if (finding.caution) return "Still busy, so it asks before ending.";
        return "Left running" + aged() + " after its window closed.";
    }
    if (id.starts_with("hog:")) {
        return finding.neverReason ? "Working hard on something it should finish."
                                   : "Working the processor hard without a break.";
    }
    if (id.starts_with("holder:")) return holderSentence(finding);
    if (id.starts_with("vm:")) return "A virtual machine keeps its memory even when idle.";
    if (id.starts_with("browser:")) return "Open" + aged() + ". Quitting gives back about half.";
    return {};
}

}  // namespace ravik::Plain
