// People edit the settings file, and other versions wrote it: a value that does not fit counts as absent.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <nlohmann/json.hpp>

#include "Core/Autopilot/Approvals.h"
#include "Core/Diagnosis/KeepList.h"
#include "Core/Watch/Thresholds.h"
#include "Platform/Platform.h"

namespace {

using nlohmann::json;

/// Holds the one value under every key, and what is set over it.
class OneValue : public ravik::Defaults {
public:
    explicit OneValue(json value) : m_value(std::move(value)) {}
    std::optional<json> get(std::string_view) override { return m_value; }
    bool set(std::string_view, const json& value) override {
        m_value = value;
        return true;
    }
    bool remove(std::string_view) override { return false; }

private:
    json m_value;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ravik;
    const json value = json::parse(data, data + size, nullptr, false);
    if (value.is_discarded()) return 0;
    if (const auto limits = Thresholds::decode(value)) {
        if (Thresholds::decode(limits->encode()) != limits) __builtin_trap();
    }
    OneValue kept(value);
    KeepList list(kept);
    const auto before = list.sorted();
    list.add("one more");
    if (list.commands().size() < before.size() || !list.commands().contains("one more")) __builtin_trap();
    OneValue approved(value);
    Approvals approvals(approved);
    const auto actions = approvals.actions();
    approvals.setActions(actions);
    if (approvals.actions() != actions) __builtin_trap();
    OneValue refused(value);
    Suggestions suggestions(refused);
    suggestions.dismissed();
    suggestions.dismiss("an app", 1e9);
    if (!suggestions.isDismissed("an app", 1e9)) __builtin_trap();
    return 0;
}
