#include "Core/Screens/DiagnosisCard.h"

#include <fmt/format.h>

#include "Core/Base/Utf8.h"
#include "Core/Wording/CardFace.h"
#include "Core/Wording/Fmt.h"
#include "Core/Wording/Plain.h"
#include "Core/Wording/Words.h"

namespace ravik::DiagnosisCards {

namespace {

std::string withoutButton(const Finding& finding) {
    if (finding.neverReason) return Plain::sentenceCase(*finding.neverReason);
    if (const auto* advice = std::get_if<Advice>(&finding.remedy)) return advice->text;
    return {};
}

std::string spoken(const DiagnosisCard& card) {
    std::string text = card.name;
    const std::string held = card.heldApart();
    for (const std::string& part : {card.verdict ? card.verdict->spoken() : std::string(), card.sentence,
                                    held.empty() ? held : "Holds " + held, card.amount, card.instead}) {
        if (part.empty()) continue;
        const bool closed = text.ends_with('.') || text.ends_with('!') || text.ends_with('?');
        text += (closed ? " " : ". ") + Utf8::capitalised(part);
    }
    return text;
}

}  // namespace

DiagnosisCard card(const Finding& finding, const ScreenInput& input, bool isSelected, bool isEnding) {
    const CardFace face(finding, input.snapshot, input.index, input.host, input.now);
    DiagnosisCard card;
    card.id = finding.id;
    card.icon = face.icon;
    card.name = Plain::name(finding, face, input.host);
    if (!finding.quits()) card.verdict = VerdictFace(finding.tone());
    card.sentence = Plain::sentence(finding, face, input.snapshot, input.host);
    card.isMemory = finding.gainBytes > 0;
    const bool scansDisk = std::holds_alternative<ScanDisk>(finding.remedy);
    card.opensDisk = scansDisk && input.hasDisk;
    if (card.isMemory) {
        card.amount = Fmt::mb(finding.gainBytes) + " back";
    } else if (card.opensDisk || !scansDisk) {
        card.amount = face.does;
    }
    if (const auto held = card.isMemory ? finding.gainBytes : face.heldBytes) card.held = Fmt::mb(held);
    if (auto label = Words::remedyLabel(finding, input.index)) {
        card.button = {.label = std::move(*label), .help = face.does, .isEnabled = !isEnding};
        if (isSelected) card.button->help += fmt::format(" ({} when selected)", input.host.nouns().confirmChord);
    } else {
        card.instead = withoutButton(finding);
    }
    card.isSelected = isSelected;
    card.isEnding = isEnding;
    card.accessible = spoken(card);
    return card;
}

}  // namespace ravik::DiagnosisCards
