#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/Linux/DesktopWorkspace.h"
#include "Platform/Linux/XWindowOwners.h"
#include "Tests/Platform/Support/Desktop.h"

namespace ravik::platform {
namespace {

TEST(Browser, ClosesPolitely) {
    OwnXServer server;
    OwnWindowManager manager(server);
    ASSERT_TRUE(manager.started());
    WorkspaceOptions options;
    options.groupOf = [](Pid pid) { return std::optional(std::to_string(pid)); };
    const auto workspace = makeWorkspace(std::move(options), {.display = server.display()});

    fakes::TemporaryFolder profile;
    Reaper reaper;
    const Pid pid =
        reaper.add(startProgram({RAVIK_CHROMIUM, "--no-sandbox", "--no-first-run", "--disable-gpu",
                                 "--password-store=basic", "--user-data-dir=" + profile.path().native(), "about:blank"},
                                {server.variable(), "HOME=" + profile.path().native()}));
    std::optional<RunningApp> app;
    ASSERT_TRUE(turnUntil(
        [&] {
            for (const RunningApp& one : workspace->running()) {
                if (one.pid == pid) app = one;
            }
            return app.has_value();
        },
        60));
    EXPECT_THAT(xWindowOwners(server.display()), testing::Contains(pid));
    EXPECT_TRUE(workspace->terminate(*app));
    EXPECT_TRUE(turnUntil([&] { return workspace->isTerminated(*app); }, 30));
}

}  // namespace
}  // namespace ravik::platform
