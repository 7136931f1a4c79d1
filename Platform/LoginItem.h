#pragma once

#include <optional>
#include <string>

namespace ravik {

/// Whether the app starts when the user logs in. Main loop.
class LoginItem {
public:
    virtual ~LoginItem() = default;
    virtual bool isEnabled() = 0;
    /// Absent if it is so now; else one sentence that says why it is not.
    virtual std::optional<std::string> setEnabled(bool enabled) = 0;
};

}  // namespace ravik
