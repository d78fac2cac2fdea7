// How the program starts, in good conditions and in bad ones.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::vector<std::string> emptyStart{"Quorvel: no hot corners placed.",
                                          "Quorvel: edge reveal watcher armed",
                                          "Quorvel: ready — 0 app(s) bound",
                                          "Quorvel: accessibility granted",
                                          "Quorvel: no apps bound; opening Settings",
                                          "Quorvel: settings window shown (680x620, 5 sections)"};

class ProgramStartTest : public testing::Test {
protected:
    ProgramWithNotes program;

    void bindNotes(const std::string& edge = "left") {
        program.bind({{program.path, program.shortcut, edge}});
    }

    std::vector<std::string> boundStart() const {
        return {"Quorvel: global hotkey registered (control,option,N) for " + program.path,
                "Quorvel: no hot corners placed.", "Quorvel: edge reveal watcher armed",
                "Quorvel: ready — 1 app(s) bound", "Quorvel: accessibility granted"};
    }

    /// It does its work: a press starts the application, the next one tucks it.
    void expectItWorks() {
        program.press(program.shortcut);
        const xcb_window_t window = program.notes.waitForWindow();
        ASSERT_TRUE(program.waitUntilActive(window));
        const Rect home = program.seen(window);
        program.press(program.shortcut);
        EXPECT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
        EXPECT_EQ(program.terminate(), 0);
        EXPECT_TRUE(program.waitForFrame(window, home));
    }
};

TEST_F(ProgramStartTest, ItMakesTheLogFolderAndASecondLaunchAppends) {
    bindNotes();
    ASSERT_FALSE(fs::exists(program.home / "Library"));
    program.start();
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_THAT(program.logLines(), testing::ElementsAreArray(boundStart()));
    program.start();
    EXPECT_EQ(program.terminate(), 0);
    std::vector<std::string> twice = boundStart();
    for (const std::string& line : boundStart()) twice.push_back(line);
    EXPECT_THAT(program.logLines(), testing::ElementsAreArray(twice));
    EXPECT_THAT(ProgramOnX::contentOf(program.session.folder() / "Quorvel.output"), IsEmpty());
}

TEST_F(ProgramStartTest, UnregistersAmongOtherArgumentsAndTouchesNothingElse) {
    program.launch({.arguments = {"first", "--unregister-login-item", "last"}});
    EXPECT_EQ(program.waitForExit(), 0);
    EXPECT_FALSE(fs::exists(program.home / "Library"));
    EXPECT_FALSE(fs::exists(program.settingsFolder));
}

TEST_F(ProgramStartTest, WithAValueAppendedTheSwitchIsIgnored) {
    bindNotes();
    program.start({.arguments = {"--unregister-login-item=1"}});
    EXPECT_THAT(program.logLines(), testing::ElementsAreArray(boundStart()));
    expectItWorks();
}

TEST_F(ProgramStartTest, WithNothingBoundTheSettingsOpenByThemselves) {
    program.bind({});
    program.start();
    const xcb_window_t window = program.waitForOwnWindow();
    EXPECT_EQ(program.titleOf(window), "Quorvel Settings");
    EXPECT_TRUE(program.probe().isViewable(window));
    EXPECT_THAT(program.logLines(), testing::ElementsAreArray(emptyStart));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramStartTest, SettingsThatCannotBeReadAreSetAsideInOneLine) {
    program.writeSettings("{ \"AppBindings\": [ {");
    program.start();
    EXPECT_EQ(program.titleOf(program.waitForOwnWindow()), "Quorvel Settings");
    const fs::path kept = program.settingsFile.string() + ".unreadable-1";
    EXPECT_EQ(ProgramOnX::contentOf(kept), "{ \"AppBindings\": [ {");
    const auto lines = program.logLines();
    ASSERT_EQ(lines.size(), 3 + emptyStart.size()) << testing::PrintToString(lines);
    EXPECT_THAT(lines[0], AllOf(StartsWith("Quorvel: " + program.settingsFile.string() +
                                           " cannot be read — "),
                                EndsWith("; it is kept as " + kept.string())));
    // It begins anew.
    EXPECT_THAT(lines[1], StartsWith("Quorvel: flattened settings — 0 app(s), 0 placement(s), "));
    EXPECT_EQ(lines[2], "Quorvel: registered to open at login");
    EXPECT_EQ(std::vector(lines.begin() + 3, lines.end()), emptyStart);
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramStartTest, ValuesOfTheWrongTypeAreTakenForMissing) {
    program.writeSettings(R"({"AppBindings": "all of them", "Placements": {"corner": 3},
        "KnownDisplays": [1, 2], "HotZoneDwellMs": {}, "TuckAnimation": 7,
        "DidFlattenPlacements": true, "DidMigrateLegacySettings": true, "DidOfferLoginItem": true})");
    program.start();
    EXPECT_EQ(program.titleOf(program.waitForOwnWindow()), "Quorvel Settings");
    EXPECT_THAT(program.logLines(), testing::ElementsAreArray(emptyStart));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramStartTest, ARecordWithoutAnApplicationDoesNotKeepTheOthersOut) {
    program.writeSettings(R"({"AppBindings": [{"hotKey": "control,Q"}, {"appPath": "  "},
        {"appPath": ")" + program.path +
                          R"(", "hotKey": "control,option,N"}],
        "DidFlattenPlacements": true, "DidMigrateLegacySettings": true, "DidOfferLoginItem": true})");
    program.start();
    EXPECT_THAT(program.logLines(), testing::ElementsAreArray(boundStart()));
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitUntilActive(program.notes.waitForWindow()));
}

TEST_F(ProgramStartTest, AListThatHoldsMoreThanRecordsIsNoList) {
    program.writeSettings(R"({"AppBindings": [7,
        {"appPath": ")" + program.path +
                          R"(", "hotKey": "control,option,N"}],
        "DidFlattenPlacements": true, "DidMigrateLegacySettings": true, "DidOfferLoginItem": true})");
    program.start();
    program.waitForOwnWindow();
    EXPECT_THAT(program.logLines(), testing::ElementsAreArray(emptyStart));
}

TEST_F(ProgramStartTest, WithoutASessionBusItWorks) {
    bindNotes();
    program.start({.without = {"DBUS_SESSION_BUS_ADDRESS"}});
    expectItWorks();
}

TEST_F(ProgramStartTest, WithASessionBusThatIsGoneItWorks) {
    bindNotes();
    program.session.bus().kill();
    program.start();
    expectItWorks();
}

TEST_F(ProgramStartTest, WithAnInvalidAddressOfTheSessionBusItWorks) {
    bindNotes();
    program.start({.environment = {{"DBUS_SESSION_BUS_ADDRESS", "no such thing"}}});
    expectItWorks();
}

TEST_F(ProgramStartTest, TheServerGoingAwayIsOneLineAndStatusOne) {
    bindNotes();
    program.start();
    program.session.server().kill();
    EXPECT_EQ(program.waitForExit(), 1);
    EXPECT_THAT(program.linesSinceReady(), ElementsAre("Quorvel: the X server has gone"));
}

TEST_F(ProgramStartTest, TheServerGoingAwayUnderAnOpenWindowIsOneLineAndStatusOne) {
    program.start();
    program.waitForOwnWindow();
    program.session.server().kill();
    EXPECT_EQ(program.waitForExit(), 1);
    EXPECT_THAT(program.linesSinceReady(),
                ElementsAre("Quorvel: no apps bound; opening Settings",
                            "Quorvel: settings window shown (680x620, 5 sections)",
                            "Quorvel: the X server has gone"));
}

class ProgramAloneTest : public ProgramStartTest {
protected:
    fs::path alone() const {
        const fs::path copy = program.session.folder() / "alone/Quorvel";
        fs::create_directory(copy.parent_path());
        fs::copy_file(ProgramOnX::defaultPath(), copy);
        return copy;
    }
};

TEST_F(ProgramAloneTest, WithoutItsInterfaceItSaysSoAndWorks) {
    bindNotes();
    program.start({.executable = alone()});
    EXPECT_THAT(program.logLines(), testing::ElementsAreArray(boundStart()));
    expectItWorks();
}

TEST_F(ProgramAloneTest, SettingsThatCannotBeShownAreALineInTheLog) {
    const fs::path executable = alone();
    program.start({.executable = executable});
    ASSERT_TRUE(program.waitForLine("Quorvel: settings not shown — the interface is missing"));
    EXPECT_THAT(
        program.linesSinceReady(),
        ElementsAre(
            "Quorvel: no apps bound; opening Settings",
            "Quorvel: quorvel-interface.so not found in " + executable.parent_path().string() +
                ", " +
                (executable.parent_path() / QUORVEL_MODULE_FOLDER).lexically_normal().string(),
            "Quorvel: settings not shown — the interface is missing"));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramAloneTest, AnInterfaceThatIsNoneIsALineInTheLog) {
    const fs::path executable = alone();
    std::ofstream(executable.parent_path() / "quorvel-interface.so") << "not a module";
    program.bind({{"/nowhere/Missing.desktop", program.shortcut}});
    program.start({.executable = executable});
    program.press(program.shortcut);
    ASSERT_TRUE(program.waitForLine("Quorvel: alert not shown — Missing not found"));
    EXPECT_THAT(program.linesSinceReady(),
                ElementsAre(StartsWith("Quorvel: cannot load "),
                            "Quorvel: alert not shown — Missing not found"));
    EXPECT_EQ(program.terminate(), 0);
}

/// As an ordinary user, for whom a folder can be closed.
class ProgramUnprivilegedTest : public ProgramStartTest {
protected:
    static void close(const fs::path& folder) {
        fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
    }
    static void reopen(const fs::path& folder) { fs::permissions(folder, fs::perms::owner_all); }

    ~ProgramUnprivilegedTest() override {
        for (const fs::path& folder : {program.home, program.settingsFolder}) {
            if (fs::exists(folder)) reopen(folder);
        }
    }
};

TEST_F(ProgramUnprivilegedTest, AHomeThatCannotBeWrittenToLeavesItWithoutALogButWorking) {
    bindNotes();
    program.handOver();
    close(program.home);
    program.launch({.prefix = ProgramOnX::asOrdinaryUser()});
    const fs::path output = program.session.folder() / "Quorvel.output";
    ASSERT_TRUE(waitUntil([&] {
        return ProgramOnX::contentOf(output).find("Quorvel: accessibility granted") !=
               std::string::npos;
    })) << ProgramOnX::contentOf(output);
    EXPECT_FALSE(fs::exists(program.home / "Library"));
    expectItWorks();
}

TEST_F(ProgramUnprivilegedTest, SettingsThatCannotBeWrittenAreUsedAsTheyAre) {
    bindNotes();
    program.handOver();
    const std::string before = program.settingsText();
    close(program.settingsFolder);
    program.start({.prefix = ProgramOnX::asOrdinaryUser()});
    const auto lines = program.logLines();
    EXPECT_THAT(lines, Contains(AllOf(StartsWith("Quorvel: could not store KnownDisplays in "),
                                      EndsWith("Permission denied"))));
    EXPECT_EQ(lines.size(), 1 + boundStart().size()) << testing::PrintToString(lines);
    expectItWorks();
    EXPECT_EQ(program.settingsText(), before);
}

TEST_F(ProgramUnprivilegedTest, SettingsThatMayNotBeReadAreLeftAlone) {
    bindNotes();
    program.handOver();
    const std::string before = program.settingsText();
    fs::permissions(program.settingsFile, fs::perms::none);
    program.start({.prefix = ProgramOnX::asOrdinaryUser()});
    EXPECT_EQ(program.titleOf(program.waitForOwnWindow()), "Quorvel Settings");
    EXPECT_EQ(program.terminate(), 0);
    fs::permissions(program.settingsFile, fs::perms::owner_read);
    EXPECT_EQ(program.settingsText(), before);
    EXPECT_THAT(program.logLines(), Contains(HasSubstr("cannot be read — Permission denied")));
}

class ProgramSettingsFileTest : public testing::Test {
protected:
    ProgramWithNotes program{{.server = XServerKind::hotPlug}};

    void addFromOutside() {
        std::string text = program.settingsText();
        text.insert(text.find('{') + 1, "\"SomebodyElse\": {\"kept\": [1, 2.5, null]},");
        program.writeSettings(text);
    }
    static std::size_t count(const std::string& text, const std::string& part) {
        std::size_t found = 0;
        for (std::size_t at = text.find(part); at != std::string::npos;
             at = text.find(part, at + 1)) {
            ++found;
        }
        return found;
    }
};

TEST_F(ProgramSettingsFileTest, WhatOthersWriteWhileItRunsIsKeptWhenItWrites) {
    program.bind({{program.path, program.shortcut, "left"}});
    program.start();
    ASSERT_TRUE(waitUntil([&] { return count(program.settingsText(), "KnownDisplays") == 1; }));
    addFromOutside();

    program.session.server().plug("DUMMY1", 1280, 0);
    EXPECT_EQ(program.terminate(), 0);
    const std::string before = program.settingsText();
    program.start();
    EXPECT_NE(program.settingsText(), before);
    EXPECT_THAT(program.settingsText(),
                AllOf(HasSubstr("DUMMY0"), HasSubstr("DUMMY1"), HasSubstr("SomebodyElse"),
                      HasSubstr("2.5"), HasSubstr(program.shortcut)));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramSettingsFileTest, WithNothingNewToRememberTheFileIsNotTouched) {
    program.bind({{program.path, program.shortcut, "left"}});
    program.start();
    EXPECT_EQ(program.terminate(), 0);
    const auto before = fs::last_write_time(program.settingsFile);
    const std::string text = program.settingsText();
    program.start();
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_EQ(fs::last_write_time(program.settingsFile), before);
    EXPECT_EQ(program.settingsText(), text);
}

}  // namespace
}  // namespace quorvel::test
