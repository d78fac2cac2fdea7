// The program started, and called again, by a session bus, as desktops do it for their launchers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

using testing::HasSubstr;

class ProgramActivationTest : public testing::Test {
protected:
    ProgramWithNotes program;

    void SetUp() override {
        program.session.folder().write("data/dbus-1/services/com.tessivane.quorvel.service",
                                       "[D-BUS Service]\nName=com.tessivane.quorvel\nExec=\"" +
                                           ProgramOnX::defaultPath().string() + "\"\n");
        program.bind({{program.path, program.shortcut}});
    }
    /// What a launcher does; nothing once the program has answered, else what went wrong.
    std::string launch(const std::vector<std::string>& what) {
        std::vector<std::string> command{"gapplication"};
        command.insert(command.end(), what.begin(), what.end());
        const std::filesystem::path output = program.session.folder() / "gapplication.log";
        std::filesystem::remove(output);
        ChildProcess process = program.session.start(command);
        const int status = process.waitForExit().value_or(-1);
        return status == 0 ? "" : std::to_string(status) + ": " + ProgramOnX::contentOf(output);
    }
    bool isReady() const { return program.waitForLine("Quorvel: ready — 1 app(s) bound"); }
    auto timesShown() const {
        const auto lines = program.logLines();
        return std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
            return line.starts_with("Quorvel: settings window shown");
        });
    }
};

TEST_F(ProgramActivationTest, ALauncherStartsItQuietlyAndShowsTheSettingsOnceItRuns) {
    EXPECT_EQ(launch({"launch", "com.tessivane.quorvel"}), "");
    ASSERT_TRUE(isReady());
    EXPECT_EQ(timesShown(), 0);

    EXPECT_EQ(launch({"launch", "com.tessivane.quorvel"}), "");
    EXPECT_EQ(program.titleOf(program.waitForOwnWindow()), "Quorvel Settings");
    EXPECT_EQ(timesShown(), 1);
}

TEST_F(ProgramActivationTest, TheSettingsActionStartsItWithItsSettings) {
    EXPECT_EQ(launch({"action", "com.tessivane.quorvel", "settings"}), "");
    ASSERT_TRUE(isReady());
    EXPECT_EQ(program.titleOf(program.waitForOwnWindow()), "Quorvel Settings");
}

TEST_F(ProgramActivationTest, OneThatWasStartedWithoutTheBusIsCalledOverIt) {
    program.start();
    EXPECT_TRUE(waitUntil([&] { return launch({"launch", "com.tessivane.quorvel"}).empty(); }));
    EXPECT_EQ(program.titleOf(program.waitForOwnWindow()), "Quorvel Settings");
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramActivationTest, AnActionThatThereIsNotAndFilesAreRefused) {
    program.start();
    EXPECT_TRUE(waitUntil([&] {
        return launch({"action", "com.tessivane.quorvel", "explode"})
                   .find("There is no action “explode”") != std::string::npos;
    }));
    EXPECT_THAT(launch({"launch", "com.tessivane.quorvel", "/etc/hostname"}),
                HasSubstr("Quorvel opens no files"));
    EXPECT_EQ(program.terminate(), 0);
}

}  // namespace
}  // namespace quorvel::test
