#include "Core/Disk/RunningPrograms.h"

#include <gtest/gtest.h>

#include "Core/Disk/DiskScanner.h"

namespace ravik {

TEST(RunningPrograms, ABrowserIsKnownByItsGroupAndByItsProgram) {
    const Host host{HostKind::linux, 1000, 50, {1}, {}};
    const auto runs = [&](std::string_view cache, const Proc& proc) {
        const auto apps = DiskScanner::runningPrograms({proc}, host);
        return DiskScanner::isRunning(*diskTables(HostKind::linux).owner(cache), apps);
    };
    Proc proc;
    proc.id = 7;
    proc.uid = 1000;
    proc.name = "chrome";
    proc.command = "/opt/google/chrome/chrome";
    EXPECT_TRUE(runs(".cache/google-chrome", proc));
    EXPECT_FALSE(runs(".cache/chromium", proc));
    proc.name = "web-content";
    proc.app = Text("Firefox ESR");
    EXPECT_TRUE(runs(".cache/mozilla", proc));
    proc.uid = 1001;
    EXPECT_FALSE(runs(".cache/mozilla", proc));
}

}  // namespace ravik
