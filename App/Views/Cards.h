#pragma once

#include <QObject>

#include "App/Views/LeavingList.h"
#include "Core/Screens/DiagnosisScreen.h"

namespace ravik::app {

/// Findings as rows. Roles: see the table in Cards.cpp.
class CardList : public LeavingList<DiagnosisCard> {
public:
    explicit CardList(QObject* parent);
};

/// What came of actions, as rows.
class ResolvedList : public RecordListModel<DiagnosisScreen::Resolved> {
public:
    explicit ResolvedList(QObject* parent);
};

}  // namespace ravik::app
