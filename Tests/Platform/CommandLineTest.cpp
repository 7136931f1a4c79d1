#include "Platform/Linux/CommandLine.h"

#include <gtest/gtest.h>

#include "Platform/Linux/Interpreters.h"
#include "Platform/Linux/Utf8.h"

namespace ravik::platform {

namespace {

using Arguments = std::vector<std::string_view>;
using namespace std::string_view_literals;

std::optional<std::string> joined(std::string_view area) { return joinArguments(splitArguments(area)); }

const std::string replacement = "\xEF\xBF\xBD";

}  // namespace

TEST(CommandLine, JoinsByOneBlankAndQuotesNothing) { EXPECT_EQ(joined("sh\0-c\0echo  a b\0"sv), "sh -c echo  a b"); }

TEST(CommandLine, KeepsEmptyArguments) {
    EXPECT_EQ(splitArguments("a\0\0b\0"sv), (Arguments{"a", "", "b"}));
    EXPECT_EQ(joined("a\0\0b\0"sv), "a  b");
}

TEST(CommandLine, AnAreaThatEndsInsideAnArgumentGivesThoseBeforeIt) { EXPECT_EQ(joined("node\0serv"sv), "node"); }

TEST(CommandLine, NoArgumentIsAbsent) {
    EXPECT_FALSE(joined(""));
    EXPECT_FALSE(joined("unended"));
}

TEST(CommandLine, WhatRemainsBehindATitleIsCut) {
    EXPECT_EQ(joined("nginx: worker process\0\0\0\0\0"sv), "nginx: worker process");
    EXPECT_EQ(joined("postgres: writer      \0"sv), "postgres: writer");
    EXPECT_FALSE(joined("\0\0\0"sv));
    EXPECT_FALSE(joined("   \0 \0"sv));
}

TEST(CommandLine, InvalidBytesAreRepairedAndNothingIsDropped) {
    EXPECT_EQ(joined("tool\0caf\xE9\0-v\0"sv), "tool caf" + replacement + " -v");
}

TEST(Utf8, WellFormedTextStaysAsItIs) {
    for (const std::string_view text :
         {"", "abc", "caf\xC3\xA9", "\xE2\x8C\x98Q", "\xF0\x9F\x8D\x8E", "\xEF\xBF\xBF"}) {
        EXPECT_EQ(repairedUtf8(text), text);
    }
}

TEST(Utf8, EachIllFormedPartBecomesOneReplacement) {
    EXPECT_EQ(repairedUtf8("\xFF\xFE"), replacement + replacement);
    EXPECT_EQ(repairedUtf8("a\xE2\x8C"), "a" + replacement);         // cut off
    EXPECT_EQ(repairedUtf8("\xE2\x8C(b"), replacement + "(b");       // broken off
    EXPECT_EQ(repairedUtf8("\xC0\xAF"), replacement + replacement);  // overlong
    EXPECT_EQ(repairedUtf8("\xE0\x80\xAF"), replacement + replacement + replacement);
    EXPECT_EQ(repairedUtf8("\xED\xA0\x80"), replacement + replacement + replacement);  // a surrogate
    EXPECT_EQ(repairedUtf8("\xF4\x90\x80\x80"), replacement + replacement + replacement + replacement);
    EXPECT_EQ(repairedUtf8("\xF0\x9F\x8D"), replacement);
    EXPECT_EQ(repairedUtf8("\x80z"), replacement + "z");
}

TEST(ProcessName, FollowsTheKernelsNameIntoTheArguments) {
    EXPECT_EQ(processName("gnome-terminal-", {"/usr/libexec/gnome-terminal-server"}, ""), "gnome-terminal-server");
    EXPECT_EQ(processName("bash", {"-bash"}, "/usr/bin/bash"), "bash");
    EXPECT_EQ(processName("bash", {"-/bin/bash"}, ""), "bash");
    EXPECT_EQ(processName("nginx", {"nginx: master process /usr/sbin/nginx -g daemon"}, ""), "nginx");
    EXPECT_EQ(processName("sshd", {"sshd: root@pts/0"}, ""), "sshd");
    EXPECT_EQ(processName("chrome", {"/opt/google/chrome/chrome --type=renderer --lang=de"}, ""), "chrome");
    EXPECT_EQ(processName("helper", {"/opt/my tools/helper"}, ""), "helper");
}

TEST(ProcessName, AScriptIsNamedInAnArgument) {
    EXPECT_EQ(processName("unattended-upgr",
                          {"/usr/bin/python3", "/usr/share/unattended-upgrades/unattended-upgrade-shutdown"},
                          "/usr/bin/python3.11"),
              "unattended-upgrade-shutdown");
    EXPECT_EQ(processName("pip3", {"/usr/bin/python3", "-I", "/usr/bin/pip3", "install"}, ""), "pip3");
    EXPECT_EQ(processName("late", {"node", "a", "b", "late"}, ""), "late");
    EXPECT_EQ(processName("later", {"node", "a", "b", "c", "later"}, "/usr/bin/node"), "node");
}

TEST(ProcessName, FifteenBytesMustBeTheWholeOfAShorterName) {
    EXPECT_EQ(processName("nod", {"node"}, "/usr/bin/nod"), "nod");
    EXPECT_EQ(processName("exactly-fifteen", {"exactly-fifteen"}, ""), "exactly-fifteen");
}

TEST(ProcessName, TheExecutableComesAfterTheArguments) {
    EXPECT_EQ(
        processName("Google Chrome H", {"/opt/Google Chrome/other", "--x"}, "/opt/Google Chrome/Google Chrome Helper"),
        "Google Chrome Helper");
    EXPECT_EQ(processName("server", {"srv", "x"}, "/srv/bin/server (deleted)"), "server");
}

TEST(ProcessName, ATitleKeepsTheKernelsName) {
    EXPECT_EQ(processName("gunicorn-pool", {"gunicorn: worker [app]"}, "/usr/bin/python3.11"), "gunicorn-pool");
    EXPECT_EQ(processName("python3", {"idle", "", "", ""}, "/usr/bin/python3.11"), "python3");
}

TEST(ProcessName, AThreadsNameGivesWay) {
    EXPECT_EQ(processName("MainThread", {"node", "server.js"}, "/usr/bin/node"), "node");
    EXPECT_EQ(processName("MainThread", {"/usr/bin/python3", "app.py"}, "/usr/bin/python3.11"), "python3");
    EXPECT_EQ(processName("Isolated Web Co", {"/usr/lib/firefox/firefox", "-contentproc"}, "/usr/lib/firefox/firefox"),
              "firefox");
    EXPECT_EQ(processName("MainThread", {"/opt/tool/run", "x"}, "/opt/tool/engine (deleted)"), "engine");
}

TEST(ProcessName, NothingButTheKernelsNameIsLeft) {
    EXPECT_EQ(processName("systemd-worker", {}, ""), "systemd-worker");
    EXPECT_EQ(processName("(sd-pam)", {"(sd-pam)"}, ""), "(sd-pam)");
    EXPECT_EQ(processName("thread", {"a", "b"}, ""), "thread");
    EXPECT_EQ(processName("caf\xC3", {}, ""), "caf" + replacement);
}

TEST(Interpreters, AreKnownWithAndWithoutAVersion) {
    for (const std::string_view name :
         {"node", "python", "python3", "python3.11", "bash", "electron25", "java", "perl5.36"}) {
        EXPECT_TRUE(isInterpreter(name)) << name;
    }
    for (const std::string_view name : {"nodemon", "pythonista", "shutter", "bashtop", "", "rubymine", "fisher"}) {
        EXPECT_FALSE(isInterpreter(name)) << name;
    }
}

TEST(Interpreters, TheScriptStandsBehindTheirOwnOptions) {
    EXPECT_EQ(scriptOf({"python3", "/usr/bin/pip"}), "/usr/bin/pip");
    EXPECT_EQ(scriptOf({"/usr/bin/python3", "-Es", "/usr/bin/terminator", "-x"}), "/usr/bin/terminator");
    EXPECT_EQ(scriptOf({"python3", "-W", "ignore", "run.py"}), "run.py");
    EXPECT_EQ(scriptOf({"node", "--require", "./hook.js", "--inspect", "server.js"}), "server.js");
    EXPECT_EQ(scriptOf({"java", "-Xmx1g", "-cp", "lib", "-jar", "/usr/share/java/app.jar", "x"}),
              "/usr/share/java/app.jar");
    EXPECT_EQ(scriptOf({"bash", "--", "run.sh"}), "run.sh");
    EXPECT_EQ(scriptOf({"-bash"}), "");
}

TEST(Interpreters, TextAndModulesAreNoScripts) {
    EXPECT_EQ(scriptOf({"python3", "-c", "import x"}), "");
    EXPECT_EQ(scriptOf({"python3", "-m", "http.server"}), "");
    EXPECT_EQ(scriptOf({"node", "-e", "1"}), "");
    EXPECT_EQ(scriptOf({"sh", "-c", "sleep 1"}), "");
    EXPECT_EQ(scriptOf({"python3", "-"}), "");
    EXPECT_EQ(scriptOf({"firefox", "page.html"}), "");
    EXPECT_EQ(scriptOf({}), "");
}

}  // namespace ravik::platform
