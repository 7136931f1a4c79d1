#pragma once

#include <functional>
#include <vector>

#include "Core/Ending/Actions.h"

namespace ravik::fakes {

/// Answers every question alike, and remembers them.
class FakeAsker : public Asker {
public:
    Task<bool> ask(const Confirmation& question) override {
        asked.push_back(question);
        if (whileAsked) whileAsked();
        co_return answer;
    }
    bool isActive() override { return active; }

    bool answer = true;
    bool active = true;
    std::vector<Confirmation> asked;
    /// What happens on the machine while the question stands.
    std::function<void()> whileAsked;
};

}  // namespace ravik::fakes
