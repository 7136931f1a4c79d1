#include "Platform/Linux/LeverRecord.h"

#include <limits>

#include <nlohmann/json.hpp>

namespace ravik::platform {

namespace {

using nlohmann::json;

json thread(const LoweredThread& one) {
    return {{"tid", one.tid}, {"startTicks", one.startTicks}, {"policy", one.policy}, {"ioPriority", one.ioPriority}};
}

json process(const HeldProcess& one) {
    json out{{"pid", one.pid}, {"startTicks", one.startTicks}};
    for (const LoweredThread& each : one.threads) out["threads"].push_back(thread(each));
    return out;
}

json record(const LeverRecord& one) {
    json out{{"id", one.id}, {"action", one.action}, {"target", one.target}, {"at", one.at}, {"ticks", one.ticks}};
    for (const HeldProcess& each : one.processes) out["processes"].push_back(process(each));
    for (const LoweredUnit& each : one.units) {
        out["units"].push_back(
            {{"name", each.name}, {"path", each.path}, {"inode", each.inode}, {"weight", each.weight}});
    }
    for (const LoweredAutogroup& each : one.autogroups) {
        out["autogroups"].push_back({{"name", each.name}, {"nice", each.nice}});
    }
    if (one.idlePolicy) out["idlePolicy"] = true;
    return out;
}

/// Reads the fields of one object and remembers whether all were there.
class Reader {
public:
    explicit Reader(const json& object) : m_object(object), m_isWhole(object.is_object()) {}

    bool isWhole() const { return m_isWhole; }

    template <typename Whole>
    void whole(const char* key, Whole& value) {
        const json* found = find(key);
        if (found && found->is_number_unsigned()) {
            const auto number = found->get<std::uint64_t>();
            if (number <= static_cast<std::uint64_t>(std::numeric_limits<Whole>::max())) {
                value = static_cast<Whole>(number);
                return;
            }
        } else if (found && found->is_number_integer()) {
            const auto number = found->get<std::int64_t>();
            if (std::numeric_limits<Whole>::is_signed &&
                number >= static_cast<std::int64_t>(std::numeric_limits<Whole>::min())) {
                value = static_cast<Whole>(number);
                return;
            }
        }
        m_isWhole = false;
    }
    void real(const char* key, double& value) {
        const json* found = find(key);
        if (found && found->is_number()) {
            value = found->get<double>();
        } else {
            m_isWhole = false;
        }
    }
    void text(const char* key, std::string& value) {
        const json* found = find(key);
        if (found && found->is_string()) {
            value = found->get<std::string>();
        } else {
            m_isWhole = false;
        }
    }
    /// Each of a list that may be missing, but must not hold anything else.
    template <typename Item, typename Parse>
    void each(const char* key, std::vector<Item>& items, Parse parse) {
        const json* found = find(key);
        if (!found) return;
        m_isWhole = m_isWhole && found->is_array();
        if (!m_isWhole) return;
        for (const json& entry : *found) {
            Reader reader(entry);
            Item item;
            parse(reader, item);
            m_isWhole = m_isWhole && reader.isWhole();
            items.push_back(std::move(item));
        }
    }
    bool flag(const char* key) const {
        const json* found = find(key);
        return found && found->is_boolean() && found->get<bool>();
    }

private:
    const json* find(const char* key) const {
        if (!m_object.is_object()) return nullptr;
        const auto hit = m_object.find(key);
        return hit == m_object.end() ? nullptr : &*hit;
    }

    const json& m_object;
    bool m_isWhole;
};

void readThread(Reader& reader, LoweredThread& one) {
    reader.whole("tid", one.tid);
    reader.whole("startTicks", one.startTicks);
    reader.whole("policy", one.policy);
    reader.whole("ioPriority", one.ioPriority);
}

void readProcess(Reader& reader, HeldProcess& one) {
    reader.whole("pid", one.pid);
    reader.whole("startTicks", one.startTicks);
    reader.each("threads", one.threads, readThread);
}

std::optional<LeverRecord> readRecord(const json& object) {
    Reader reader(object);
    LeverRecord one;
    reader.whole("id", one.id);
    reader.text("action", one.action);
    reader.text("target", one.target);
    reader.real("at", one.at);
    reader.whole("ticks", one.ticks);
    reader.each("processes", one.processes, readProcess);
    reader.each("units", one.units, [](Reader& fields, LoweredUnit& unit) {
        fields.text("name", unit.name);
        fields.text("path", unit.path);
        fields.whole("inode", unit.inode);
        fields.whole("weight", unit.weight);
    });
    reader.each("autogroups", one.autogroups, [](Reader& fields, LoweredAutogroup& group) {
        fields.text("name", group.name);
        fields.whole("nice", group.nice);
    });
    one.idlePolicy = reader.flag("idlePolicy");
    if (!reader.isWhole()) return {};
    return one;
}

}  // namespace

std::string writePage(const LeverPage& page) {
    json records = json::array();
    for (const LeverRecord& one : page.records) records.push_back(record(one));
    // A group's name is whatever a process calls itself, and need not be text.
    return json{{"boot", page.boot}, {"records", records}}.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::optional<LeverPage> parsePage(std::string_view text) {
    const json value = json::parse(text, nullptr, false);
    if (!value.is_object()) return {};
    LeverPage page;
    const auto boot = value.find("boot");
    const auto records = value.find("records");
    if (boot == value.end() || !boot->is_string() || records == value.end() || !records->is_array()) return {};
    page.boot = boot->get<std::string>();
    for (const json& entry : *records) {
        if (auto one = readRecord(entry)) page.records.push_back(std::move(*one));
    }
    return page;
}

}  // namespace ravik::platform
