#pragma once

#include <functional>
#include <optional>

namespace ravik {

enum class ColorScheme { light, dark };

/// How the user wants programs to look. What is absent the desktop does not tell: the program goes by its palette.
struct Look {
    std::optional<ColorScheme> scheme;
    std::optional<bool> highContrast;
    std::optional<bool> reducedMotion;
    /// Of the usual size of text, 1; within 0.5 and 4.
    std::optional<double> textScale;

    friend bool operator==(const Look&, const Look&) = default;
};

/// The desktop's settings for that, followed live. Main loop.
class Appearance {
public:
    virtual ~Appearance() = default;
    /// As of now. The first call may wait for the desktop's answer, half a second at most.
    virtual Look look() = 0;
    /// Calls back on the loop after each change of look(). One observer; an empty one ends the following.
    virtual void onChange(std::function<void(const Look&)> observer) = 0;
};

}  // namespace ravik
