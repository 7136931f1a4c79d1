#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Core/Base/Subscription.h"
#include "Core/Ending/Actions.h"
#include "Core/Screens/DiagnosisScreen.h"
#include "Core/Screens/DiagnosisState.h"
#include "Core/Screens/EvidenceScreen.h"
#include "Core/Screens/MapScreen.h"
#include "Core/Watch/Monitor.h"

namespace ravik {

/// The Diagnosis screen: follows the Monitor, remembers what the user chose and did, and runs the remedies. What it
/// remembers goes with it, so it should live as long as the window does; an action that is under way when it goes runs
/// on to its end. Main loop.
class DiagnosisModel {
public:
    static constexpr const char* modeKey = "diagnosisMode";

    /// Both must outlive the actions that are started here. `openDisk` brings the Disk screen to the front; empty where
    /// there is none.
    DiagnosisModel(Monitor& monitor, Actions& actions, std::function<void()> openDisk);
    ~DiagnosisModel();
    DiagnosisModel(const DiagnosisModel&) = delete;
    DiagnosisModel& operator=(const DiagnosisModel&) = delete;

    const DiagnosisScreen& screen() const { return m_screen; }
    /// Empty unless the map is chosen and there is something to show.
    const MapScreen& map() const { return m_map; }
    /// The open evidence sheet; absent while it is closed.
    const std::optional<EvidenceScreen>& evidence() const { return m_evidence; }
    const DiagnosisState& state() const { return m_state; }

    /// The button of one card, by its finding in the newest reading: asks, then acts. Nothing while that finding's
    /// action is under way, or where it has no button; for a full disk the Disk screen opens.
    void run(const std::string& id);
    /// The same for the selected card, where the cards are shown: the chord.
    void runSelected();
    /// The Free button. Nothing while an action is under way.
    void free();

    /// Stores the choice.
    void setMode(DiagnosisState::Mode mode);
    /// Absent takes the selection away. An id that no card has changes nothing.
    void select(const std::optional<std::string>& id);
    /// One card down or up, across the sections; at the ends it stays. The first or the last without a selection.
    void selectNext();
    void selectPrevious();
    void selectArc(const std::optional<std::string>& id);
    /// Clockwise and back, round and round.
    void selectNextArc();
    void selectPreviousArc();
    /// The pointer is over the rows, or over the ring: they keep their places. Holds from the next reading on.
    void setPointerOver(bool isOver) { m_isPointerOver = isOver; }

    void openEvidence(const std::string& id);
    /// Of the selected card, where the cards are shown.
    void openSelectedEvidence();
    void closeEvidence();
    /// The keep button of the open sheet: leaves its program running from now on. False if that could not be stored,
    /// which the sheet then says, or there is nothing to keep.
    bool keep();

    /// Called after each change of what the functions above answer; not where a reading looks like the one before.
    /// One observer, which may destroy the model.
    void onChange(std::function<void()> observer) { m_observer = std::move(observer); }

private:
    /// An action under way and the line that tells of it.
    struct Running {
        int number = 0;
        std::string line;
    };
    /// Its name and icon as long as its subject is there to be looked at.
    struct Subject {
        Finding finding;
        std::string name;
        IconRef icon;
    };

    ScreenInput input() const;
    const Finding* find(const std::string& id) const;
    Subject subject(const Finding& finding) const;
    int start(std::string line, const std::vector<Subject>& subjects);
    /// Takes back what start() did. True if there is an outcome.
    void finish(int number, const std::vector<Subject>& subjects);
    void resolve(Subject subject, std::string line, bool byFree);

    void take(std::shared_ptr<const Snapshot> snapshot);
    /// Cards come back when there is more to do than what was acted on.
    void reviewDone();
    /// Makes the records anew and tells of a difference.
    void refresh();
    DiagnosisScreen makeScreen();
    MapScreen makeMap(const DiagnosisScreen& screen);
    void moveSelection(int step);
    void moveArc(int step);

    Monitor& m_monitor;
    Actions& m_actions;
    std::function<void()> m_openDisk;
    std::function<void()> m_observer;

    std::shared_ptr<const Snapshot> m_snapshot;
    std::unique_ptr<ProcessIndex> m_index;
    MemoryPicture m_picture;
    DiagnosisState m_state;
    std::optional<std::string> m_evidenceId;
    bool m_hasKeepFailed = false;
    bool m_isPointerOver = false;
    std::vector<Running> m_running;
    int m_lastNumber = 0;
    /// As they stand.
    DiagnosisOrder::Ids m_cards;
    DiagnosisOrder::Ids m_arcs;

    DiagnosisScreen m_screen;
    MapScreen m_map;
    std::optional<EvidenceScreen> m_evidence;

    Subscription m_subscription;
    /// Gone with the model: what comes back later finds nobody.
    std::shared_ptr<DiagnosisModel*> m_self;
};

}  // namespace ravik
