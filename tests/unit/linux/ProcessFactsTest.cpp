#include "platform/linux/ProcessFacts.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/unit/linux/FakeProcess.hpp"

namespace quorvel::native {
namespace {

using test::FakeProcess;
using test::ScratchFolder;

class ProcessFactsTest : public testing::Test {
protected:
    ProcessFacts read(const FakeProcess& process) {
        process.writeTo(folder);
        return readProcessFacts(process.pid, (folder / "proc").string()).value();
    }

    ScratchFolder folder;
};

TEST_F(ProcessFactsTest, OwnProcessIsRead) {
    const auto facts = readProcessFacts(getpid());
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->executable, std::filesystem::canonical("/proc/self/exe").string());
    EXPECT_EQ(facts->program, facts->executable);
}

TEST_F(ProcessFactsTest, NoSuchProcessIsNothing) {
    EXPECT_FALSE(readProcessFacts(0));
    EXPECT_FALSE(readProcessFacts(-5));
    EXPECT_FALSE(readProcessFacts(0x7FFFFFFF));
}

TEST_F(ProcessFactsTest, ExecutableReplacedByAnUpgradeKeepsItsPath) {
    EXPECT_EQ(read({.executable = "/usr/bin/foo (deleted)"}).program, "/usr/bin/foo");
}

TEST_F(ProcessFactsTest, InterpreterStandsForItsScript) {
    const std::string script = folder.write("bin/foo", "").string();
    const ProcessFacts facts =
        read({.executable = "/usr/bin/python3.11", .arguments = {"python3", script, "-x"}});
    EXPECT_EQ(facts.executable, "/usr/bin/python3.11");
    EXPECT_EQ(facts.program, script);
    EXPECT_EQ(facts.programName, "foo");
}

TEST_F(ProcessFactsTest, ScriptIsFoundFromTheWorkingFolder) {
    const std::string script = folder.write("bin/foo.sh", "").string();
    const ProcessFacts facts = read({.executable = "/bin/bash",
                                     .arguments = {"sh", "./bin/../bin/foo.sh"},
                                     .workingFolder = folder.path().string()});
    EXPECT_EQ(facts.program, script);
}

TEST_F(ProcessFactsTest, InterpreterWithoutScriptHasNoName) {
    const ProcessFacts facts =
        read({.executable = "/usr/bin/python3.11", .arguments = {"python3", "-c", "import x"}});
    EXPECT_EQ(facts.program, "/usr/bin/python3.11");
    EXPECT_EQ(facts.programName, "");
}

TEST_F(ProcessFactsTest, ModuleIsKnownByNameOnly) {
    const ProcessFacts facts =
        read({.executable = "/usr/bin/python3.11", .arguments = {"python3", "-m", "foo"}});
    EXPECT_EQ(facts.program, "/usr/bin/python3.11");
    EXPECT_EQ(facts.programName, "foo");
}

TEST_F(ProcessFactsTest, HintsOfTheEnvironmentAreRead) {
    const ProcessFacts facts = read({.executable = "/usr/bin/foo",
                                     .environment = {"A=b", "NOVALUE", "BAMF_DESKTOP_FILE_HINT=/h",
                                                     "GIO_LAUNCHED_DESKTOP_FILE=/ü=x.desktop",
                                                     "GIO_LAUNCHED_DESKTOP_FILE_PID=100"}});
    EXPECT_EQ(facts.desktopFileHint, "/h");
    EXPECT_EQ(facts.launchedDesktopFile, "/ü=x.desktop");
    EXPECT_EQ(facts.launchedPid, 100);
}

TEST_F(ProcessFactsTest, FlatpakTellsItsName) {
    const ProcessFacts facts = read(
        {.executable = "/app/bin/foo",
         .flatpakInfo = "[Runtime]\nname=wrong\n[Application]\nname=org.example.Foo\nruntime=x\n"});
    EXPECT_EQ(facts.sandboxIds, std::vector<std::string>{"org.example.Foo"});
}

TEST_F(ProcessFactsTest, SnapIsReadFromItsControlGroup) {
    const std::string uuid = "6f5c6a8a-1b2c-4d3e-8f90-0123456789ab";
    const std::string group = "0::/user.slice/user-1000.slice/app.slice/snap.";
    EXPECT_EQ(
        read({.pid = 1, .executable = "/x", .controlGroup = group + "foo.bar." + uuid + ".scope\n"})
            .sandboxIds,
        std::vector<std::string>{"foo_bar"});
    EXPECT_EQ(
        read({.pid = 2, .executable = "/x", .controlGroup = group + "foo.b-r-" + uuid + ".scope"})
            .sandboxIds,
        std::vector<std::string>{"foo_b-r"});
    EXPECT_TRUE(read({.pid = 3, .executable = "/x", .controlGroup = group}).sandboxIds.empty());
}

TEST_F(ProcessFactsTest, VariableOfASnapIsBelievedInItsFolderOnly) {
    EXPECT_EQ(
        read({.pid = 1, .executable = "/snap/foo/12/bin/foo", .environment = {"SNAP_NAME=foo"}})
            .sandboxIds,
        std::vector<std::string>{"foo_foo"});
    EXPECT_TRUE(read({.pid = 2, .executable = "/usr/bin/bar", .environment = {"SNAP_NAME=foo"}})
                    .sandboxIds.empty());
}

TEST_F(ProcessFactsTest, ShellScriptThatStartedItIsKnown) {
    const std::string script = folder.write("bin/start foo.sh", "").string();
    FakeProcess{.pid = 7, .executable = "/usr/bin/dash", .arguments = {"sh", script}}.writeTo(
        folder);
    EXPECT_EQ(read({.executable = "/opt/foo/foo-bin", .parent = 7}).parentScript, script);
}

TEST_F(ProcessFactsTest, InteractiveShellThatStartedItSaysNothing) {
    FakeProcess{.pid = 7, .executable = "/usr/bin/bash", .arguments = {"-bash"}}.writeTo(folder);
    EXPECT_EQ(read({.executable = "/opt/foo/foo-bin", .parent = 7}).parentScript, "");
}

TEST_F(ProcessFactsTest, HugeFilesAreReadInPart) {
    std::vector<std::string> environment{"BAMF_DESKTOP_FILE_HINT=first"};
    environment.emplace_back(8'000'000, 'x');
    environment.emplace_back("GIO_LAUNCHED_DESKTOP_FILE=late");
    const ProcessFacts facts = read({.executable = "/x", .environment = environment});
    EXPECT_EQ(facts.desktopFileHint, "first");
    EXPECT_EQ(facts.launchedDesktopFile, "");
}

// A sandboxed program can put anything in that place.
TEST_F(ProcessFactsTest, PipeInPlaceOfAFileIsNotWaitedFor) {
    std::filesystem::create_directories(folder / "proc/100/root");
    ASSERT_EQ(mkfifo((folder / "proc/100/root/.flatpak-info").c_str(), 0600), 0);
    EXPECT_TRUE(read({.executable = "/x"}).sandboxIds.empty());
}

}  // namespace
}  // namespace quorvel::native
