#include "Core/Ending/Asker.h"

#include <nlohmann/json.hpp>

namespace ravik {

Task<bool> askAndLog(Asker& asker, Confirmation question, Log& log, Clock& clock) {
    const double asked = clock.monotonic();
    const bool confirmed = co_await asker.ask(question);
    log.event("confirm", {{"title", question.title},
                          {"confirmed", confirmed},
                          {"seconds", clock.monotonic() - asked},
                          {"active", asker.isActive()}});
    co_return confirmed;
}

}  // namespace ravik
