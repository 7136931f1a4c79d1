#include "Platform/Linux/MappedCode.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ravik::platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(MappedCode, IsWhatIsExecutableAndLiesInAFile) {
    EXPECT_THAT(
        mappedCode("55d0a2a00000-55d0a2a21000 r--p 00000000 fd:00 1234   /usr/bin/ravik-desktop\n"
                   "55d0a2a21000-55d0a2b00000 r-xp 00021000 fd:00 1234   /usr/bin/ravik-desktop\n"
                   "55d0a2b00000-55d0a2b10000 rw-p 00100000 fd:00 1234   /usr/bin/ravik-desktop\n"
                   "7f0000000000-7f0000001000 r-xp 00000000 00:00 0 \n"
                   "7f0000002000-7f0000003000 rwxp 00000000 fd:00 99     /tmp/patched code\n"
                   "7f0000004000-7f0000006000 r-xp 00000000 fd:00 99     /opt/My App/lib one.so\n"
                   "7ffd0b7f2000-7ffd0b7f4000 r-xp 00000000 00:00 0      [vdso]\n"),
        ElementsAre(AddressRange{0x55d0a2a21000, 0x55d0a2b00000}, AddressRange{0x7f0000004000, 0x7f0000006000}));
}

TEST(MappedCode, LeavesOutWhatWasCompiledWhileRunning) {
    EXPECT_THAT(mappedCode("7f501d671000-7f501d672000 r-xp 00000000 00:01 5123   /memfd:JITCode:QtQml (deleted)\n"
                           "7f501d673000-7f501d674000 r-xp 00000000 00:01 5124   /memfd:doublemapper\n"
                           "7f501d675000-7f501d676000 r-xp 00000000 fd:00 5125   /tmp/.code (deleted)\n"),
                IsEmpty());
}

TEST(MappedCode, LeavesOutWhatIsNoLineOfAMap) {
    EXPECT_THAT(mappedCode(""), IsEmpty());
    EXPECT_THAT(mappedCode("\n\n"), IsEmpty());
    EXPECT_THAT(mappedCode("55d0-55d"), IsEmpty());
    EXPECT_THAT(mappedCode("zz-yy r-xp 0 0 0 /x\n"), IsEmpty());
    EXPECT_THAT(mappedCode("2000-1000 r-xp 0 0 0 /x\n"), IsEmpty());
    EXPECT_THAT(mappedCode("1000 r-xp 0 0 0 /x\n"), IsEmpty());
    EXPECT_THAT(mappedCode("1000-2000 r-xp 0 0 0 /x"), ElementsAre(AddressRange{0x1000, 0x2000}));
}

}  // namespace
}  // namespace ravik::platform
