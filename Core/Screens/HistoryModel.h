#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "Core/Record/HistoryData.h"

namespace ravik {

class MainLoop;

/// The history that the app shows, read beside the main loop and kept for the next look. Main loop.
class HistoryModel {
public:
    HistoryModel(MainLoop& loop, std::filesystem::path logDir, std::filesystem::path cacheDir);
    ~HistoryModel();
    HistoryModel(const HistoryModel&) = delete;
    HistoryModel& operator=(const HistoryModel&) = delete;

    /// Absent until the first load has ended.
    const std::optional<HistoryData>& data() const;
    bool isLoading() const;
    /// Reads what has come since; does nothing while a load runs. A day whose log has gone leaves the data.
    void refresh();
    /// Called after each load. One observer.
    void onChange(std::function<void()> observer);

private:
    struct State;
    /// Shared with the load that runs, which may outlive the model.
    std::shared_ptr<State> m_state;
};

}  // namespace ravik
