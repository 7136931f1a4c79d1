#pragma once

#include <map>
#include <string>
#include <string_view>

namespace ravik::HistoryStore {

/// A finding's short name: what its title speaks of, or the last piece of its id where no title is known.
std::string label(std::string_view id, const std::map<std::string, std::string>& titles);

}  // namespace ravik::HistoryStore
