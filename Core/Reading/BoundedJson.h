#pragma once

#include <span>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

/// JSON from strangers, read without trust.
namespace ravik::BoundedJson {

/// Containers within one another, the outermost included.
inline constexpr std::size_t deepest = 64;

/// Parses one JSON value into `root`. Of an outermost object only the members named by `keys` are kept, the rest
/// takes no memory however large or deep it is. Empty if all went well, else one line that names the key's path.
std::string parse(std::string_view text, std::span<const std::string_view> keys, nlohmann::json& root);

/// Adds a member or an element to a path: "trend.held[0].bytes", and "["Google Chrome"]" for what is no plain word.
void appendKey(std::string& path, std::string_view key);
void appendIndex(std::string& path, std::size_t index);

}  // namespace ravik::BoundedJson
