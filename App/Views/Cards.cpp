#include "App/Views/Cards.h"

#include <array>

namespace ravik::app {

namespace {

using Card = LeavingRow<DiagnosisCard>;
using Resolved = DiagnosisScreen::Resolved;

/// Of the record within the row.
template <typename Read>
auto of(Read read) {
    return [read](const Card& row) { return std::invoke(read, row.record); };
}

const std::array<RecordListModel<Card>::Role, 22> cardRoles{{
    {"id", of(&DiagnosisCard::id)},
    {"iconApp", of([](const DiagnosisCard& card) { return card.icon.app; })},
    {"iconSymbol", of([](const DiagnosisCard& card) { return card.icon.symbol; })},
    {"name", of(&DiagnosisCard::name)},
    {"hasVerdict", of([](const DiagnosisCard& card) { return card.verdict.has_value(); })},
    {"tone", of([](const DiagnosisCard& card) { return card.verdict ? int(card.verdict->shape) : 0; })},
    {"verdict", of([](const DiagnosisCard& card) { return card.verdict ? card.verdict->word : std::string(); })},
    {"verdictSpoken",
     of([](const DiagnosisCard& card) { return card.verdict ? card.verdict->spoken() : std::string(); })},
    {"sentence", of(&DiagnosisCard::sentence)},
    {"amount", of(&DiagnosisCard::amount)},
    {"isMemory", of(&DiagnosisCard::isMemory)},
    {"held", of(&DiagnosisCard::heldApart)},
    {"button", of([](const DiagnosisCard& card) { return card.button ? card.button->label : std::string(); })},
    {"help", of([](const DiagnosisCard& card) { return card.button ? card.button->help : std::string(); })},
    {"canRun", of([](const DiagnosisCard& card) { return card.button && card.button->isEnabled; })},
    {"instead", of(&DiagnosisCard::instead)},
    {"opensDisk", of(&DiagnosisCard::opensDisk)},
    {"isSelected", of(&DiagnosisCard::isSelected)},
    {"isStop", of(&DiagnosisCard::isStop)},
    {"isEnding", of(&DiagnosisCard::isEnding)},
    {"spoken", of(&DiagnosisCard::accessible)},
    {"isLeaving", &Card::isLeaving},
}};

const std::array<RecordListModel<Resolved>::Role, 8> resolvedRoles{{
    {"id", &Resolved::id},
    {"iconApp", [](const Resolved& row) { return row.icon.app; }},
    {"iconSymbol", [](const Resolved& row) { return row.icon.symbol; }},
    {"name", &Resolved::name},
    {"line", &Resolved::line},
    {"symbol", [](const Resolved& row) { return row.face.symbol; }},
    {"isWell", [](const Resolved& row) { return row.face.colour == Colour::safe; }},
    {"spoken", &Resolved::accessible},
}};

}  // namespace

CardList::CardList(QObject* parent)
    : LeavingList(
          cardRoles, [](const Card& row) { return row.record.id; }, parent) {}

ResolvedList::ResolvedList(QObject* parent) : RecordListModel(resolvedRoles, &Resolved::id, parent) {}

}  // namespace ravik::app
