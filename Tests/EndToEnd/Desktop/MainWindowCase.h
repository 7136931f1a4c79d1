#pragma once

#include <string>
#include <vector>

#include "Tests/EndToEnd/Desktop/DesktopCase.h"

namespace ravik::endtoend {

/// The app's main window over programs that terminals have left behind, with limits that no machine breaks by itself.
class MainWindowCase : public DesktopCase {
protected:
    void SetUp() override;

    /// Starts the app with a tray and waits until its window has read the machine and has the keyboard. Seconds.
    void openWindow(const std::string& interval = "1");
    /// The same for a window that something else opens.
    void awaitWindow();
    /// Makes the window as high as the screen, so that nothing of its screen lies below.
    void enlarge();
    /// Has the machine read again by the sidebar's button, once all that was left behind counts as such.
    void readNow();
    /// Waits for so many more readings.
    bool ticks(std::size_t count);

    /// The first of that role whose name begins like that, once it stands; empty after a while.
    Accessible get(const std::string& role, const std::string& beginning);
    /// True once nothing of that role begins like that.
    bool showsNone(const std::string& role, const std::string& beginning);
    /// True once the keyboard is on what begins like that.
    bool hasFocus(const std::string& role, const std::string& beginning);
    /// True once a question stands and has the keyboard.
    bool isAsked();
    /// Waits for the question and says yes.
    void sayYes();

    static constexpr const char* title = "Diagnosis";
    static constexpr const char* button = "push button";
    static constexpr const char* card = "list item";
    static constexpr const char* label = "label";
    /// A question takes no yes before.
    static constexpr useconds_t doubleClick = 600'000;
};

}  // namespace ravik::endtoend
