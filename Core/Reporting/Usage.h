#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

/// The opt-in daily report: counts only, never a name, a path, a command line or a text from the log. Here it is
/// made; nothing here sends. Pure but for the functions that take a folder; any thread.
namespace ravik::Usage {

/// Stands for the id while sharing is off.
inline constexpr std::string_view noID = "made when you switch this on";

/// The kinds of log lines that a report counts.
inline constexpr std::array<std::string_view, 19> kinds{"tick",
                                                        "finding",
                                                        "remedy",
                                                        "fixAll",
                                                        "window",
                                                        "notifications",
                                                        "shadowDecision",
                                                        "shadowOutcome",
                                                        "launch",
                                                        "notify",
                                                        "notificationAction",
                                                        "panel",
                                                        "feedback",
                                                        "crash",
                                                        "hang",
                                                        "suggestionShown",
                                                        "suggestionAccepted",
                                                        "suggestionDismissed",
                                                        "autopilotAction"};

/// A finding's kind, as far as the report may name it; anything else is "other".
std::string_view findingKind(std::string_view id);

/// Of `logDays`, in their order, those after `sent` and before `today`; none while nothing is known to be sent.
std::vector<std::string> due(std::span<const std::string> logDays, const std::optional<std::string>& sent,
                             std::string_view today);

/// What the report says of the machine and the program, beside the counts.
struct About {
    std::string id;
    std::string version;
    std::string os;
    std::uint64_t ramBytes = 0;
};

nlohmann::json report(std::string_view day, std::span<const nlohmann::json> lines, const About& about);
/// The same of a day's log file, which is not held in memory.
nlohmann::json reportOfDay(const std::filesystem::path& logFolder, const std::string& day, const About& about);

/// Absent if the day has a log; else the sentence that says that it has none.
std::optional<std::string> refusal(const std::filesystem::path& logFolder, const std::string& day);

/// Today's report so far as indented JSON, with noID where `about.id` is empty.
std::string preview(const std::filesystem::path& logFolder, const std::string& today, About about);

/// "debian 12" out of the text of an os-release file; the name alone where there is no version; empty where there
/// is none.
std::string osName(std::string_view osRelease);

/// The value is a date "yyyy-MM-dd" of the calendar.
bool isDay(std::string_view text);

}  // namespace ravik::Usage
