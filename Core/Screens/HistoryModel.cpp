#include "Core/Screens/HistoryModel.h"

#include <utility>

#include "Core/Record/HistoryStore.h"
#include "Platform/Platform.h"

namespace ravik {

struct HistoryModel::State {
    MainLoop& loop;
    std::filesystem::path logDir, cacheDir;
    std::optional<HistoryData> data;
    HistoryMemo memo;
    bool isLoading = false;
    std::function<void()> observer;
};

HistoryModel::HistoryModel(MainLoop& loop, std::filesystem::path logDir, std::filesystem::path cacheDir)
    : m_state(new State{loop, std::move(logDir), std::move(cacheDir), {}, {}, false, {}}) {}

HistoryModel::~HistoryModel() = default;

const std::optional<HistoryData>& HistoryModel::data() const { return m_state->data; }

bool HistoryModel::isLoading() const { return m_state->isLoading; }

void HistoryModel::onChange(std::function<void()> observer) { m_state->observer = std::move(observer); }

void HistoryModel::refresh() {
    if (m_state->isLoading) return;
    m_state->isLoading = true;
    // The load gives the memo back when it ends, so it is not copied.
    auto work = [&loop = m_state->loop, logDir = m_state->logDir, cacheDir = m_state->cacheDir,
                 memo = std::make_shared<HistoryMemo>(std::move(m_state->memo)), weak = std::weak_ptr(m_state)] {
        auto days = HistoryStore::load(logDir, cacheDir, std::move(*memo));
        auto data = std::make_shared<HistoryData>(days);
        auto known = std::make_shared<HistoryMemo>();
        for (DayAggregate& day : days) known->insert_or_assign(day.day, std::move(day));
        loop.post([weak, data, known] {
            const auto state = weak.lock();
            if (!state) return;
            state->memo = std::move(*known);
            state->data = std::move(*data);
            state->isLoading = false;
            if (state->observer) state->observer();
        });
    };
    m_state->memo.clear();
    m_state->loop.background(std::move(work));
}

}  // namespace ravik
