#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <set>

#include "Tests/EndToEnd/Desktop/DesktopCase.h"

namespace ravik::endtoend {
namespace {

using platform::waitUntil;

/// What those hear of a window who do not see it, on a machine in memory that is always the same.
class Heard : public DesktopCase, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        DesktopCase::SetUp();
        showTray(Tray::trayer);
        app = std::make_unique<Running>(home, std::vector<std::string>{"--stay", GetParam()}, "ravik-pictures");
        // High enough for all of a screen: what has been scrolled away is not heard.
        if (std::string_view(GetParam()).starts_with("window")) {
            ASSERT_TRUE(waitUntil([&] { return !windows().empty(); }, 40));
            hands->place("Diagnosis", {40, 60, 960, 1400});
        }
        // It is heard whole once two looks in a row find the same.
        std::string before;
        ASSERT_TRUE(waitUntil(
            [&] {
                heard = shown();
                const std::string now = heard.text();
                const bool isWhole = now == before && heard.find("push button", lastButton()) != nullptr;
                before = now;
                return isWhole;
            },
            40))
            << before;
    }
    void TearDown() override {
        app->signal(SIGKILL);
        app->finish();
        app.reset();
        DesktopCase::TearDown();
    }

    static const char* lastButton() {
        const std::string_view scene = GetParam();
        if (scene == "question") return "Cancel";
        if (scene.ends_with("evidence")) return "Close";
        return scene.starts_with("window") ? "Read the computer Now" : "Quit Ravik";
    }

    Accessible heard;
};

INSTANTIATE_TEST_SUITE_P(Desktop, Heard,
                         testing::Values("panel-calm", "panel-findings", "question", "window-diagnosis",
                                         "window-diagnosis-calm", "window-diagnosis-map", "window-diagnosis-evidence",
                                         "window-diagnosis-after"),
                         [](const auto& scene) {
                             std::string name = scene.param;
                             std::erase(name, '-');
                             return name;
                         });

TEST_P(Heard, IsAsItWasWrittenDown) {
    std::ifstream file(std::string(RAVIK_SOURCE_DIR "/Tests/EndToEnd/Desktop/golden/") + GetParam() + ".txt");
    const std::string golden{std::istreambuf_iterator<char>(file), {}};
    std::string text;
    waitUntil([&] {
        text.clear();
        for (const Accessible& window : shown().children) text += window.text();
        return text == golden;
    });
    EXPECT_EQ(text, golden);
}

TEST_P(Heard, HasANameAndARoleForEverything) {
    int controls = 0;
    heard.visit([&](const Accessible& one) {
        EXPECT_NE(one.name, "") << one.text();
        EXPECT_NE(one.role, "unknown") << one.text();
        if (one.role == "push button") ++controls;
    });
    EXPECT_GT(controls, 0);
}

TEST_P(Heard, GetsEveryEnabledControlByTab) {
    std::set<std::string> wanted;
    // The keyboard stays within a sheet.
    const Accessible* sheet = heard.findBeginning("dialog", "");
    (sheet ? *sheet : heard).visit([&](const Accessible& one) {
        if (one.role == "push button" && one.enabled) wanted.insert(one.name);
    });
    std::set<std::string> reached;
    // More than once round: on a busy machine the keyboard may be further than was heard.
    for (std::size_t step = 0; step < 6 * wanted.size() + 6 && !std::ranges::includes(reached, wanted); ++step) {
        if (const Accessible* focus = heard.focus()) reached.insert(focus->name);
        const std::string before = heard.focus() ? heard.focus()->name : "";
        hands->press(key::tab);
        waitUntil(
            [&] {
                heard = shown();
                return heard.focus() && heard.focus()->name != before;
            },
            3);
    }
    std::erase_if(reached, [&](const std::string& name) { return !wanted.contains(name); });
    EXPECT_EQ(reached, wanted);
}

}  // namespace
}  // namespace ravik::endtoend
