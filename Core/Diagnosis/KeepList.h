#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace ravik {

class Defaults;

/// Full command lines that the user asked to leave running.
using KeepSet = std::unordered_set<std::string>;

/// The user's own word, which goes before every diagnosis. A program is kept by its whole command line, matched
/// exactly: it stays kept when it restarts, and another instance with other arguments is not kept. Main loop.
class KeepList {
public:
    static constexpr std::string_view key = "keepRunning";

    explicit KeepList(Defaults& defaults) : m_defaults(defaults) {}

    /// Empty where nothing, or nothing readable, is stored.
    KeepSet commands() const;
    /// The same, in ascending order.
    std::vector<std::string> sorted() const;
    /// False if it could not be stored.
    bool add(const std::string& command);
    bool remove(const std::string& command);

private:
    Defaults& m_defaults;
};

}  // namespace ravik
