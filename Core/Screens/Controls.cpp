#include "Core/Screens/Controls.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "Core/Wording/Fmt.h"

namespace ravik {

namespace {

constexpr double minute = 60;
constexpr double hour = 3600;
constexpr double twoDays = 172800;
constexpr double day = 86400;

struct Mark {
    VerdictFace::Shape shape;
    std::string_view colour;
    std::string_view word;
};

Mark markOf(Tone tone) {
    using Shape = VerdictFace::Shape;
    switch (tone) {
        case Tone::safe: break;
        case Tone::caution: return {Shape::ring, Colour::caution, "asks first"};
        case Tone::never: return {Shape::square, Colour::never, "left alone"};
        case Tone::advice: return {Shape::dashedRing, Colour::secondary, "tip"};
    }
    return {Shape::dot, Colour::safe, "safe"};
}

}  // namespace

ReadoutFace::ReadoutFace() : ReadoutFace({}, {}, State::pending) {}

ReadoutFace::ReadoutFace(std::string figure, std::string unitOfIt, State of) : state(of) {
    const bool isPending = state == State::pending;
    value = isPending ? "—" : std::move(figure);
    if (!isPending) unit = std::move(unitOfIt);
}

ReadoutFace ReadoutFace::amount(std::uint64_t bytes, State state) {
    auto [number, unit] = Fmt::amount(bytes);
    return {std::move(number), std::move(unit), state};
}

std::string ReadoutFace::spoken() const { return unit.empty() ? value : value + " " + unit; }

VerdictFace::VerdictFace(Tone tone, std::optional<std::string> instead, bool onAmber) {
    const Mark mark = markOf(tone);
    shape = mark.shape;
    colour = onAmber ? Colour::onSignal : mark.colour;
    word = instead ? std::move(*instead) : std::string(mark.word);
}

std::string VerdictFace::spoken() const { return "Verdict: " + word; }

FreeButtonFace::FreeButtonFace(std::uint64_t bytes, const std::optional<std::string>& running)
    : label(running     ? *running
            : bytes > 0 ? "Free " + Fmt::mb(bytes)
                        : "Nothing to free"),
      isEnabled(bytes > 0 && !running),
      isBusy(running.has_value()) {}

ResolvedFace::ResolvedFace(std::string_view line) {
    const bool failed = line.starts_with("Left running") || line.find("did not") != line.npos;
    symbol = failed ? "exclamationmark.circle" : "checkmark.circle.fill";
    colour = failed ? Colour::caution : Colour::safe;
}

std::string Pending::title(const Host& host) { return fmt::format("Reading {}…", host.nouns().yourMachine); }

LiveText ago(Time then, Time now) {
    const double age = std::max(0.0, now - then);
    const auto cut = [&](double unit, std::string_view word) -> LiveText {
        const double count = std::floor(age / unit);
        return {fmt::format("{:.0f} {}", count, word), then + (count + 1) * unit};
    };
    if (age < minute) return cut(1, "s");
    if (age < hour) return cut(minute, "min");
    if (age < twoDays) return cut(hour, "h");
    return cut(day, "days");
}

LiveText minutesLeft(Time end, Time now) {
    const double minutes = std::max(1.0, std::ceil((end - now) / minute));
    return {Fmt::plural(static_cast<std::uint64_t>(minutes), "minute") + " left", end - (minutes - 1) * minute};
}

}  // namespace ravik
