// The built program, as far as it gets without an X server.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/x11/ChildProcess.hpp"
#include "tests/support/x11/DBusSession.hpp"
#include "tests/support/x11/ScratchFolder.hpp"

namespace quorvel::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

class ProgramTest : public testing::Test {
protected:
    ScratchFolder folder;
    fs::path home = folder / "home";
    fs::path log = home / "Library/Logs/Quorvel.log";
    fs::path autostart = home / ".config/autostart/com.tessivane.quorvel.desktop";

    Environment environment{{"HOME", home}, {"PATH", "/usr/bin:/bin"}};
    DBusSession bus{environment, folder};

    void SetUp() override {
        fs::create_directory(home);
        environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    }

    /// The exit status; -1 when it did not end by itself.
    int run(std::vector<std::string> arguments, const fs::path& program = QUORVEL_PROGRAM) {
        arguments.insert(arguments.begin(), program);
        ChildProcess process({.arguments = arguments,
                              .environment = environment,
                              .logFile = folder / "output",
                              .descriptors = {}});
        const auto status = process.waitForExit();
        return status && WIFEXITED(*status) ? WEXITSTATUS(*status) : -1;
    }

    static std::vector<std::string> linesOf(const fs::path& file) {
        std::ifstream stream(file);
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);) lines.push_back(line);
        return lines;
    }

    void registerByHand() const {
        folder.write("home/.config/autostart/com.tessivane.quorvel.desktop",
                     "[Desktop Entry]\nType=Application\nName=Quorvel\nExec=Quorvel\n");
    }
};

TEST_F(ProgramTest, WithoutAServerItSaysSoInOneLineAndFails) {
    EXPECT_EQ(run({}), 1);
    EXPECT_THAT(linesOf(log), ElementsAre(EndsWith("Quorvel: cannot start — DISPLAY is not set")));
    EXPECT_THAT(linesOf(folder / "output"), IsEmpty());
}

TEST_F(ProgramTest, WithNeitherServerNorSessionBusThereIsNoPlaceForItsItemEither) {
    bus.kill();
    for (const bool isTold : {true, false}) {
        if (!isTold) environment.erase("DBUS_SESSION_BUS_ADDRESS");
        fs::remove(log);
        EXPECT_EQ(run({}), 1);
        EXPECT_THAT(
            linesOf(log),
            ElementsAre(EndsWith("Quorvel: cannot start — DISPLAY is not set"),
                        EndsWith("Quorvel: the system refused to create a status item button.")));
    }
}

TEST_F(ProgramTest, ASecondStartAppendsToTheSameLog) {
    folder.write("home/Library/Logs/Quorvel.log", "from earlier\n");
    run({});
    run({"--unknown", "argument"});
    EXPECT_THAT(linesOf(log), ElementsAre("from earlier", EndsWith("DISPLAY is not set"),
                                          EndsWith("DISPLAY is not set")));
}

TEST_F(ProgramTest, TheLogIsNamedAfterTheProgramFileAndNotAfterALinkToIt) {
    const fs::path copy = folder / "Renamed Program";
    fs::copy_file(QUORVEL_PROGRAM, copy);
    const fs::path link = folder / "link";
    fs::create_symlink(copy, link);
    run({}, link);
    EXPECT_EQ(linesOf(home / "Library/Logs/Renamed Program.log").size(), 1u);
    EXPECT_EQ(std::distance(fs::directory_iterator(home / "Library/Logs"), {}), 1);
}

TEST_F(ProgramTest, ALogFolderThatCannotBeMadeIsPassedOver) {
    folder.write("home/Library", "a file in the way");
    EXPECT_EQ(run({}), 1);
    EXPECT_THAT(linesOf(folder / "output"), ElementsAre(EndsWith("DISPLAY is not set")));
}

TEST_F(ProgramTest, ALogThatCannotBeOpenedLeavesTheStreamsAsTheyAre) {
    fs::create_directories(log);
    EXPECT_EQ(run({}), 1);
    EXPECT_THAT(linesOf(folder / "output"), ElementsAre(EndsWith("DISPLAY is not set")));
}

TEST_F(ProgramTest, UnregistersAmongOtherArgumentsAndTouchesNoLog) {
    registerByHand();
    EXPECT_EQ(run({"first", "--unregister-login-item", "last"}), 0);
    EXPECT_FALSE(fs::exists(autostart));
    EXPECT_FALSE(fs::exists(home / "Library"));
    EXPECT_THAT(linesOf(folder / "output"), IsEmpty());
}

TEST_F(ProgramTest, UnregisteringWhatIsNotRegisteredSucceedsInSilence) {
    EXPECT_EQ(run({"--unregister-login-item"}), 0);
    EXPECT_FALSE(fs::exists(home / "Library"));
    EXPECT_THAT(linesOf(folder / "output"), IsEmpty());
}

TEST_F(ProgramTest, AFailureToUnregisterIsPassedOverInSilence) {
    // Not even the superuser can unlink a folder.
    fs::create_directories(autostart / "occupied");
    EXPECT_EQ(run({"--unregister-login-item"}), 0);
    EXPECT_TRUE(fs::exists(autostart));
    EXPECT_THAT(linesOf(folder / "output"), IsEmpty());
}

TEST_F(ProgramTest, TheSwitchCountsAsTheNameOfTheProgramToo) {
    registerByHand();
    const fs::path folderOfCopy = folder / "bin";
    fs::create_directory(folderOfCopy);
    fs::copy_file(QUORVEL_PROGRAM, folderOfCopy / "--unregister-login-item");
    ChildProcess process({.arguments = {"--unregister-login-item"},
                          .environment = {{"HOME", home}, {"PATH", folderOfCopy}},
                          .logFile = folder / "output",
                          .descriptors = {}});
    EXPECT_EQ(process.waitForExit(), 0);
    EXPECT_FALSE(fs::exists(autostart));
}

TEST_F(ProgramTest, OnlyTheWholeSwitchCounts) {
    registerByHand();
    for (const char* argument :
         {"--unregister-login-item=1", "--unregister-login-item ", "-unregister-login-item",
          "--Unregister-Login-Item", "x--unregister-login-item"}) {
        EXPECT_EQ(run({argument}), 1) << argument;
    }
    EXPECT_TRUE(fs::exists(autostart));
    EXPECT_EQ(linesOf(log).size(), 5u);
}

}  // namespace
}  // namespace quorvel::test
