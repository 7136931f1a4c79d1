#include "Platform/Linux/SwayIpc.h"

#include <cstring>

#include <nlohmann/json.hpp>

namespace ravik::platform::SwayIpc {

namespace {

using Json = nlohmann::json;

constexpr std::string_view magic = "i3-ipc";
constexpr std::size_t headerSize = magic.size() + 8;
constexpr std::uint32_t largest = 64U << 20;

Json parse(std::string_view text) { return Json::parse(text, nullptr, false); }

std::int64_t number(const Json& node, const char* key) {
    const auto at = node.find(key);
    return at != node.end() && at->is_number_integer() ? at->get<std::int64_t>() : 0;
}

Pid pid(const Json& node) { return static_cast<Pid>(number(node, "pid")); }

}  // namespace

std::string encode(std::uint32_t type, std::string_view payload) {
    const auto size = static_cast<std::uint32_t>(payload.size());
    std::string bytes(magic);
    bytes.append(reinterpret_cast<const char*>(&size), sizeof size);
    bytes.append(reinterpret_cast<const char*>(&type), sizeof type);
    return bytes.append(payload);
}

std::optional<Message> take(std::string& bytes, bool& broken) {
    broken = !magic.starts_with(std::string_view(bytes).substr(0, magic.size()));
    if (broken || bytes.size() < headerSize) return {};
    std::uint32_t size = 0;
    Message message;
    std::memcpy(&size, bytes.data() + magic.size(), sizeof size);
    std::memcpy(&message.type, bytes.data() + magic.size() + sizeof size, sizeof message.type);
    broken = size > largest;
    if (broken || bytes.size() - headerSize < size) return {};
    message.payload = bytes.substr(headerSize, size);
    bytes.erase(0, headerSize + size);
    return message;
}

Tree parseTree(std::string_view json) {
    Tree tree;
    const Json root = parse(json);
    std::vector<const Json*> stack{&root};
    while (!stack.empty()) {
        const Json& node = *stack.back();
        stack.pop_back();
        if (!node.is_object()) continue;
        if (const Pid owner = pid(node); owner > 0) {
            tree.windows.push_back({static_cast<std::uint64_t>(number(node, "id")), owner, true});
            const auto focused = node.find("focused");
            if (focused != node.end() && *focused == true) tree.focused = owner;
        }
        for (const char* key : {"floating_nodes", "nodes"}) {
            const auto below = node.find(key);
            if (below == node.end() || !below->is_array()) continue;
            for (auto at = below->rbegin(); at != below->rend(); ++at) stack.push_back(&*at);
        }
    }
    return tree;
}

Pid focusedBy(std::string_view json) {
    const Json event = parse(json);
    if (!event.is_object()) return 0;
    const auto change = event.find("change");
    const auto container = event.find("container");
    if (change == event.end() || *change != "focus" || container == event.end() || !container->is_object()) return 0;
    return pid(*container);
}

bool succeeded(std::string_view json) {
    const Json answer = parse(json);
    if (!answer.is_array() || answer.empty()) return false;
    for (const Json& part : answer) {
        if (!part.is_object() || part.value("success", Json(false)) != true) return false;
    }
    return true;
}

}  // namespace ravik::platform::SwayIpc
