#include <gmock/gmock.h>

#include <fstream>
#include <regex>

#include <fmt/format.h>

#include "Tests/EndToEnd/Desktop/MainWindowCase.h"

namespace ravik::endtoend {
namespace {

/// What is heard of the whole screen over programs that this computer really runs, with an N for every figure that
/// depends on the computer.
class WindowHeard : public MainWindowCase {
protected:
    static std::string withoutFigures(const std::string& text) {
        static const std::regex figure("[0-9][0-9.,]*( of |\u00a0MB| MB| GB| min)");
        return std::regex_replace(text, figure, "N$1");
    }
    static std::string golden(const char* name) {
        std::ifstream file(fmt::format(RAVIK_SOURCE_DIR "/Tests/EndToEnd/Desktop/golden/{}.txt", name));
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::string heard() {
        std::string text;
        for (const Accessible& window : shown().children) text += window.text();
        return withoutFigures(text);
    }
    void expectHeard(const char* name) {
        std::string text;
        platform::waitUntil([&] { return (text = heard()) == golden(name); }, 20);
        EXPECT_EQ(text, golden(name));
    }
};

TEST_F(WindowHeard, ReadsAsSentences) {
    leave("shop/server.js", 200);
    leave("_npx/mcp-server/index.js", 100);
    ASSERT_GT(leave("blog/site.js", 64), 0);
    // A database that somebody started by hand.
    const std::string database = home.idle("postgres") + " -D " + (home.path() / "data").native();
    const Pid terminal = start({home.shell("bash"), "-c", database + " & wait"}, {"RAVIK_TEST_HOLDS=48"});
    const Pid left = find(database);
    reaper.end(terminal);
    ASSERT_EQ(findAdopted(database), left);
    openWindow();
    enlarge();
    expectHeard("window-real");

    click(button, "End… site.js");
    sayYes();
    ASSERT_TRUE(showsBeginning(label, "site.js. 1 ended"));
    expectHeard("window-real-after");
}

}  // namespace
}  // namespace ravik::endtoend
