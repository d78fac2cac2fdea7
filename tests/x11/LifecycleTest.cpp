// How the built program starts and ends.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <sstream>

#include "tests/x11/RunningProgram.hpp"

namespace quorvel::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* readyLine = "Quorvel: ready — 1 app(s) bound";

class LifecycleTest : public testing::Test {
protected:
    XSession session;
    RunningProgram program{session};

    void SetUp() override { program.configure(RunningProgram::bindingOfTheMissing); }

    static std::string registeredLine() {
        return std::string("Quorvel: global hotkey registered (control,option,N) for ") +
               RunningProgram::missingPath;
    }

    static std::string contentOf(const fs::path& file) {
        std::ifstream stream(file);
        std::ostringstream content;
        content << stream.rdbuf();
        return content.str();
    }

    static fs::path procFile(const ChildProcess& process, const char* name) {
        return fs::path("/proc") / std::to_string(process.pid()) / name;
    }

    /// -1 when it does not end by itself, or by a signal.
    static int exitStatus(ChildProcess& process) {
        const auto status = process.waitForExit();
        return status && WIFEXITED(*status) ? WEXITSTATUS(*status) : -1;
    }
};

TEST_F(LifecycleTest, SaysThatItIsReadyAndLoadsNoToolkit) {
    const ChildProcess process = program.start();
    EXPECT_THAT(program.lines(),
                ElementsAre(registeredLine(), readyLine, "Quorvel: accessibility granted"));
    EXPECT_THAT(contentOf(procFile(process, "maps")), Not(HasSubstr("libQt")));
}

#ifndef __SANITIZE_ADDRESS__
TEST_F(LifecycleTest, TakesLessThanTenMegabytes) {
    const ChildProcess process = program.start();
    std::istringstream status(contentOf(procFile(process, "status")));
    long kilobytes = 0;
    for (std::string word; status >> word;) {
        if (word == "VmRSS:") status >> kilobytes;
    }
    EXPECT_GT(kilobytes, 0);
    EXPECT_LT(kilobytes, 10'000);
}
#endif

TEST_F(LifecycleTest, NeedsNoSessionBus) {
    session.bus().kill();
    const ChildProcess process =
        program.start({{"DBUS_SESSION_BUS_ADDRESS", ""}, {"XDG_RUNTIME_DIR", ""}});
    program.raiseAlert(process);
    session.input().tap("ESCAPE");
    EXPECT_TRUE(waitUntil([&] { return program.activeWindowOf(process) == XCB_WINDOW_NONE; }));
    EXPECT_TRUE(process.isRunning());
}

TEST_F(LifecycleTest, ASecondStartOnTheServerEndsWithoutAWord) {
    const ChildProcess first = program.start();
    const auto before = program.lines();
    ChildProcess second = session.start({QUORVEL_PROGRAM});
    EXPECT_EQ(exitStatus(second), 0);
    EXPECT_EQ(program.lines(), before);
    EXPECT_TRUE(first.isRunning());
}

TEST_F(LifecycleTest, StartsAgainAfterItWasKilled) {
    ChildProcess first = program.start();
    first.signal(SIGKILL);
    ASSERT_TRUE(first.waitForExit());
    const ChildProcess second = session.start({QUORVEL_PROGRAM});
    EXPECT_TRUE(waitUntil([&] { return program.countOfLines(readyLine) == 2; }));
}

TEST_F(LifecycleTest, AShortcutOfAnotherProgramIsRejectedWithTheServersError) {
    TestClient other(session.displayName());
    ASSERT_EQ(other.grabKey(session.input().keycode("N"), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1),
              0);
    const ChildProcess process = program.start();
    EXPECT_EQ(program.lines().front(), std::string("Quorvel: hotkey 'control,option,N' for ") +
                                           RunningProgram::missingPath + " rejected (error 10)");
}

TEST_F(LifecycleTest, EndsInOrderOnTheSignalsThatAskForIt) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const int starts = program.countOfLines("Quorvel: accessibility ");
        ChildProcess process = session.start({QUORVEL_PROGRAM});
        ASSERT_TRUE(
            waitUntil([&] { return program.countOfLines("Quorvel: accessibility ") > starts; }));
        process.signal(signal);
        EXPECT_EQ(exitStatus(process), 0) << signal;
    }
}

TEST_F(LifecycleTest, OutlivesTheTerminalWhenItWasStartedToDoSo) {
    ChildProcess process = program.start({}, "nohup");
    process.signal(SIGHUP);
    program.raiseAlert(process);
    EXPECT_TRUE(process.isRunning());
}

TEST_F(LifecycleTest, SigtermAnswersAnAlertAndEndsTheProgram) {
    ChildProcess process = program.start();
    program.raiseAlert(process);
    process.signal(SIGTERM);
    EXPECT_EQ(exitStatus(process), 0);
    EXPECT_THAT(program.lines(),
                ElementsAre(registeredLine(), readyLine, "Quorvel: accessibility granted"));
}

TEST_F(LifecycleTest, ALostServerIsOneLineAndStatusOne) {
    ChildProcess process = program.start();
    session.server().kill();
    EXPECT_EQ(exitStatus(process), 1);
    EXPECT_THAT(program.lines(),
                ElementsAre(registeredLine(), readyLine, "Quorvel: accessibility granted",
                            "Quorvel: the X server has gone"));
}

TEST_F(LifecycleTest, ALostServerIsOneLineWithAnAlertUpToo) {
    ChildProcess process = program.start();
    program.raiseAlert(process);
    session.server().kill();
    EXPECT_EQ(exitStatus(process), 1);
    EXPECT_THAT(program.lines(),
                ElementsAre(registeredLine(), readyLine, "Quorvel: accessibility granted",
                            "Quorvel: the X server has gone"));
}

TEST_F(LifecycleTest, WithoutItsModuleItRunsAndSaysWhatItCannotShow) {
    const fs::path copy = session.folder() / "alone/Quorvel";
    fs::create_directory(copy.parent_path());
    fs::copy_file(QUORVEL_PROGRAM, copy);
    const RunningProgram alone(session, copy);
    const ChildProcess process = alone.start();
    session.input().chord({"Control", "Alt"}, "N");
    EXPECT_TRUE(waitUntil(
        [&] { return alone.countOfLines("Quorvel: alert not shown — nowhere not found") == 1; }));
    EXPECT_EQ(alone.countOfLines("Quorvel: quorvel-interface.so not found in "), 1);
    EXPECT_TRUE(process.isRunning());

    // It is there a moment later, as when the program is just being updated.
    fs::copy_file(fs::path(QUORVEL_PROGRAM).parent_path() / "quorvel-interface.so",
                  copy.parent_path() / "quorvel-interface.so");
    alone.raiseAlert(process);
}

TEST_F(LifecycleTest, FindsItsModuleWhereverItIsInstalled) {
    const fs::path prefix = session.folder() / "elsewhere";
    runToEnd({.arguments = {"cmake", "--install", QUORVEL_BUILD_FOLDER, "--prefix", prefix},
              .environment = session.environment(),
              .logFile = session.folder() / "install.log",
              .descriptors = {}});
    ASSERT_FALSE(fs::exists(prefix / "bin/quorvel-interface.so"));
    const RunningProgram installed(session, prefix / "bin/Quorvel");
    const ChildProcess process = installed.start();
    installed.raiseAlert(process);
}

TEST_F(LifecycleTest, AModuleThatIsNoneIsALine) {
    const fs::path copy = session.folder() / "alone/Quorvel";
    session.folder().write("alone/quorvel-interface.so", "not a library");
    fs::copy_file(QUORVEL_PROGRAM, copy);
    const RunningProgram alone(session, copy);
    const ChildProcess process = alone.start();
    session.input().chord({"Control", "Alt"}, "N");
    EXPECT_TRUE(waitUntil([&] { return alone.countOfLines("Quorvel: alert not shown — ") == 1; }));
    EXPECT_EQ(alone.countOfLines("Quorvel: cannot load "), 1);
}

}  // namespace
}  // namespace quorvel::test
