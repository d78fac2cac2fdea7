// The built program as a process: what it takes, when it is there twice, and what ends it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class LifecycleTest : public testing::Test {
protected:
    static constexpr const char* shortcut = "control,option,N";

    ProgramOnX program;

    void SetUp() override { program.bind({{"/nowhere/Missing.desktop", shortcut}}); }

    xcb_window_t raiseAlert() {
        program.press(shortcut);
        return program.waitForOwnWindow();
    }
};

TEST_F(LifecycleTest, LoadsTheToolkitNotBeforeAWindowIsNeeded) {
    program.start();
    const auto mapped = [&] {
        return ProgramOnX::contentOf("/proc/" + std::to_string(program.pid()) + "/maps");
    };
    EXPECT_THAT(mapped(), Not(HasSubstr("libQt")));
    raiseAlert();
    EXPECT_THAT(mapped(), HasSubstr("libQt"));
}

#ifndef __SANITIZE_ADDRESS__
TEST_F(LifecycleTest, TakesLessThanTenMegabytes) {
    program.start();
    std::istringstream status(
        ProgramOnX::contentOf("/proc/" + std::to_string(program.pid()) + "/status"));
    long kilobytes = 0;
    for (std::string word; status >> word;) {
        if (word == "VmRSS:") status >> kilobytes;
    }
    EXPECT_GT(kilobytes, 0);
    EXPECT_LT(kilobytes, 10'000);
}
#endif

TEST_F(LifecycleTest, ASecondStartOnTheServerEndsWithoutAWord) {
    program.start();
    const auto before = program.logLines();
    ChildProcess second = program.session.start({QUORVEL_PROGRAM});
    EXPECT_EQ(second.waitForExit(), 0);
    EXPECT_EQ(program.logLines(), before);
    EXPECT_TRUE(program.isRunning());
}

TEST_F(LifecycleTest, StartsAgainAfterItWasKilled) {
    program.start();
    program.sendSignal(SIGKILL);
    EXPECT_EQ(program.waitForExit(), -1);
    program.start();
    EXPECT_THAT(program.linesSinceReady(), IsEmpty());
}

TEST_F(LifecycleTest, EndsInOrderWithItsTerminalToo) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        program.start();
        program.sendSignal(signal);
        EXPECT_EQ(program.waitForExit(), 0) << signal;
    }
}

TEST_F(LifecycleTest, OutlivesTheTerminalWhenItWasStartedToDoSo) {
    program.start({.prefix = {"nohup"}});
    program.sendSignal(SIGHUP);
    raiseAlert();
    EXPECT_TRUE(program.isRunning());
}

TEST_F(LifecycleTest, ALostServerIsOneLineWithAnAlertUpToo) {
    program.start();
    raiseAlert();
    program.session.server().kill();
    EXPECT_EQ(program.waitForExit(), 1);
    EXPECT_THAT(program.linesSinceReady(), ElementsAre("Quorvel: the X server has gone"));
}

TEST_F(LifecycleTest, FindsAModuleThatComesLater) {
    const fs::path copy = program.session.folder() / "alone/Quorvel";
    fs::create_directory(copy.parent_path());
    fs::copy_file(QUORVEL_PROGRAM, copy);
    program.start({.executable = copy});
    program.press(shortcut);
    ASSERT_TRUE(program.waitForLine("Quorvel: alert not shown — Missing not found"));
    fs::copy_file(QUORVEL_INTERFACE_MODULE, copy.parent_path() / "quorvel-interface.so");
    raiseAlert();
}

TEST_F(LifecycleTest, FindsItsModuleWhereverItIsInstalled) {
    const fs::path prefix = program.session.folder() / "elsewhere";
    runToEnd({.arguments = {"cmake", "--install", QUORVEL_BUILD_FOLDER, "--prefix", prefix},
              .environment = program.session.environment(),
              .logFile = program.session.folder() / "install.log",
              .descriptors = {}});
    ASSERT_FALSE(fs::exists(prefix / "bin/quorvel-interface.so"));
    program.start({.executable = prefix / "bin/Quorvel"});
    raiseAlert();
}

}  // namespace
}  // namespace quorvel::test
