#include "Platform/Linux/StandardStreams.h"

#include <cerrno>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Platform/Linux/PosixTerminal.h"
#include "Tests/Platform/Support/ChildWork.h"

namespace ravik::platform {

TEST(StandardStreams, AFileNeverTakesTheNumberOfAClosedOne) {
    EXPECT_EQ(inChild([] {
                  close(STDIN_FILENO);
                  close(STDOUT_FILENO);
                  close(STDERR_FILENO);
                  secureStandardStreams();
                  return open("/dev/null", O_RDONLY) > STDERR_FILENO ? 0 : 1;
              }),
              0);
}

TEST(StandardStreams, AnOpenOneStays) {
    EXPECT_EQ(inChild([] {
                  int ends[2];
                  if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) return 1;
                  secureStandardStreams();
                  char letter = 0;
                  return write(STDOUT_FILENO, "x", 1) == 1 && read(ends[0], &letter, 1) == 1 && letter == 'x' ? 0 : 2;
              }),
              0);
}

TEST(StandardStreams, APipeWithoutAReaderEndsNobody) {
    EXPECT_EQ(inChild([] {
                  int ends[2];
                  if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) return 1;
                  close(ends[1]);
                  secureStandardStreams();
                  if (PosixTerminal().hasLostReader()) return 2;
                  close(ends[0]);
                  if (!PosixTerminal().hasLostReader()) return 3;
                  return write(STDOUT_FILENO, "x", 1) < 0 && errno == EPIPE ? 0 : 4;
              }),
              0);
}

}  // namespace ravik::platform
