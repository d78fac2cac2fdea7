#include "platform/linux/ProgramName.hpp"

#include <gtest/gtest.h>

#include <utility>

namespace quorvel::native {
namespace {

std::string programIn(const std::string& commandLine) {
    return programOf(splitCommandLine(commandLine));
}

TEST(ProgramNameTest, ProgramIsTheFirstWord) {
    EXPECT_EQ(programIn("gedit %U"), "gedit");
    EXPECT_EQ(programIn("/opt/Über App/app --flag"), "/opt/Über");
    EXPECT_EQ(programIn("\"/opt/Über App/app\" --flag"), "/opt/Über App/app");
}

TEST(ProgramNameTest, NothingToTellIsEmpty) {
    for (const char* line : {"", "   ", "\"open", "env", "env -i A=1", "sh -c", "sh", "bwrap",
                             "python3 -c 'import x'", "python3", "flatpak run org.example.App"}) {
        EXPECT_EQ(programIn(line), "") << line;
    }
}

TEST(ProgramNameTest, EnvIsLookedThrough) {
    EXPECT_EQ(programIn("env foo"), "foo");
    EXPECT_EQ(programIn("env -i -u HOME -C /tmp A=1 B_2=x=y /opt/foo --x"), "/opt/foo");
    EXPECT_EQ(programIn("/usr/bin/env --unset=A foo"), "foo");
    EXPECT_EQ(programIn("env -S \"A=1 foo -x\" y"), "foo");
    EXPECT_EQ(programIn("env env env foo"), "foo");
    EXPECT_EQ(programIn("env BAMF_DESKTOP_FILE_HINT=/x/y_z.desktop /snap/bin/y %u"), "/snap/bin/y");
}

TEST(ProgramNameTest, ShellsAreLookedThrough) {
    EXPECT_EQ(programIn("sh -c foo"), "foo");
    EXPECT_EQ(programIn("/bin/bash -lc \"exec A=1 /opt/foo 'a b'\""), "/opt/foo");
    EXPECT_EQ(programIn("sh -c 'cd /opt/x && ./foo; rm y'"), "./foo");
    EXPECT_EQ(programIn("sh -c 'foo; rm y'"), "foo");
    EXPECT_EQ(programIn("sh -e /opt/start.sh now"), "/opt/start.sh");
    EXPECT_EQ(programIn("bash -o pipefail -- start.sh"), "start.sh");
    EXPECT_EQ(programIn("sh -c 'env A=1 sh -c \"nice -n 5 foo\"'"), "foo");
}

TEST(ProgramNameTest, InterpretersYieldTheirScript) {
    EXPECT_EQ(programIn("python3 /opt/foo.py -c"), "/opt/foo.py");
    EXPECT_EQ(programIn("python3.11 -W ignore -X dev -u foo.py"), "foo.py");
    EXPECT_EQ(programIn("python3 -m foo.gui --x"), "foo.gui");
    EXPECT_EQ(programIn("perl -w foo.pl"), "foo.pl");
    EXPECT_EQ(programIn("node --require x foo.js"), "foo.js");
    EXPECT_EQ(programIn("gjs -m foo.js"), "foo.js");
    EXPECT_EQ(programIn("java -Xmx1g -cp a.jar -jar foo.jar bar"), "foo.jar");
    EXPECT_EQ(programIn("java -cp a.jar org.example.Main"), "org.example.Main");
}

TEST(ProgramNameTest, SandboxesAreLookedThrough) {
    EXPECT_EQ(programIn("bwrap --ro-bind / / --dev /dev --unshare-pid --setenv A B -- foo --x"),
              "foo");
    EXPECT_EQ(programIn("bwrap --dev-bind / / --unshare-all --die-with-parent /opt/foo --bind"),
              "/opt/foo");
    EXPECT_EQ(programIn("flatpak run --branch=stable --command=foo org.example.App @@u %U @@"),
              "foo");
    EXPECT_EQ(programIn("snap run foo"), "foo");
}

TEST(ProgramNameTest, StartersAreLookedThrough) {
    for (const char* line : {"nohup foo", "setsid -f foo", "nice -n 10 foo", "gamemoderun foo"}) {
        EXPECT_EQ(programIn(line), "foo") << line;
    }
}

TEST(ProgramNameTest, WrappersWithoutEndGiveUp) {
    std::string line;
    for (int i = 0; i < 100000; ++i) line += "env ";
    EXPECT_EQ(programIn(line + "foo"), "");
}

TEST(ProgramNameTest, InterpretersAreKnownWithTheirVersions) {
    for (const char* name : {"sh", "bash", "python3", "python3.11", "perl5.36", "wish8.6", "java",
                             "node", "gjs-console", "php8.2"}) {
        EXPECT_TRUE(isInterpreter(name)) << name;
    }
    for (const char* name : {"", "3.11", "pythonista", "gedit", "shotwell", "javaws", "perlbrew"}) {
        EXPECT_FALSE(isInterpreter(name)) << name;
    }
}

}  // namespace
}  // namespace quorvel::native
