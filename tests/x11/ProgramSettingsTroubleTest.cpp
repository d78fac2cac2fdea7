// The settings window when the ground moves: files that others change, programs that go, a store
// that takes nothing, a module of another version.

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "main/shell/InterfaceEntry.hpp"
#include "tests/x11/SettingsOnX.hpp"

namespace quorvel::test {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* shortcut = "control,option,N";
constexpr const char* noApps =
    "No apps yet. Add one, then click a corner or edge on a display below.";

class ProgramSettingsTroubleTest : public testing::Test {
protected:
    SettingsOnX program;
    const std::string path = program.notes.entry();

    /// As an editor saves a file: another one in its place.
    void replaceSettings(const std::string& text) const {
        const fs::path beside = program.settingsFolder / "edited";
        std::ofstream(beside) << text;
        fs::rename(beside, program.settingsFile);
    }
    std::string hotKeyOf(const std::string& appPath) const {
        return program.field("AppBindings", "appPath", appPath, "hotKey");
    }
};

TEST_F(ProgramSettingsTroubleTest, WhatAnEditorChangesWhileTheWindowIsOpenIsKeptAndShown) {
    const TestApplication tasks(program.session, QUORVEL_TEST_APPLICATION, {.name = "tasks"});
    const std::string tasksPath = tasks.entry();
    program.bind({{path, shortcut}});
    const xcb_window_t window = program.openSettings();
    program.click("Edit notes");
    const xcb_window_t sheet = program.waitForDialog(window);

    std::string text = program.settingsText();
    const std::string list = "\"AppBindings\": [";
    ASSERT_NE(text.find(list), std::string::npos);
    text.insert(text.find(list) + list.size(),
                "{\"appPath\": \"" + tasksPath +
                    "\", \"hotKey\": \"control,option,K\", \"autoTuck\": \"false\"},");
    text.insert(text.find('{') + 1, "\"SomebodyElse\": [1, 2.5],");
    replaceSettings(text);

    program.startRecording();
    program.press("control,option,J");
    program.waitFor("Shortcut: ⌃⌥J");
    program.click("Done");
    EXPECT_TRUE(program.waitUntilGone(sheet));
    program.waitFor("Edit tasks");
    program.waitFor("Edit notes");
    EXPECT_EQ(hotKeyOf(path), "control,option,J");
    EXPECT_EQ(hotKeyOf(tasksPath), "control,option,K");
    EXPECT_TRUE(program.stored("SomebodyElse"));
    EXPECT_TRUE(program.waitForLine("Quorvel: global hotkey registered (control,option,K) for " +
                                    tasksPath));
}

TEST_F(ProgramSettingsTroubleTest, AFileThatIsNoLongerSettingsIsSetAsideAndTheWindowGoesOn) {
    program.bind({{path, shortcut}});
    const xcb_window_t window = program.openSettings();
    replaceSettings("half a file {");
    program.showSettings();
    program.waitFor(noApps);
    EXPECT_THAT(program.linesSinceReady(), Contains(HasSubstr("defaults.json.unreadable-1")));
    EXPECT_EQ(ProgramOnX::contentOf(program.settingsFolder / "defaults.json.unreadable-1"),
              "half a file {");
    program.click("Add an app");
    program.waitForDialog(window);
    program.type("notes");
    program.input().tap("RETURN");
    program.waitFor("Edit notes");
    EXPECT_EQ(hotKeyOf(path), "none");
}

TEST_F(ProgramSettingsTroubleTest, AnApplicationRemovedFromTheFileWhileItsSheetIsOpenStaysRemoved) {
    program.bind({{path, shortcut}});
    const xcb_window_t window = program.openSettings();
    program.click("Edit notes");
    const xcb_window_t sheet = program.waitForDialog(window);
    replaceSettings(
        "{\"DidFlattenPlacements\": true, \"DidMigrateLegacySettings\": true, "
        "\"DidOfferLoginItem\": true}");
    program.startRecording();
    program.press("control,option,J");
    program.waitFor("Shortcut: None");
    program.click("Done");
    EXPECT_TRUE(program.waitUntilGone(sheet));
    program.waitFor(noApps);
    EXPECT_EQ(hotKeyOf(path), "");
}

TEST_F(ProgramSettingsTroubleTest, AProgramUninstalledWhileItsSheetIsOpenKeepsItsSettings) {
    program.bind({{path, shortcut, "left"}});
    const xcb_window_t window = program.openSettings();
    program.click("Edit notes — left tuck");
    const xcb_window_t sheet = program.waitForDialog(window);
    fs::remove(path);
    program.click("Tuck Now");
    // The name went with the entry.
    program.waitFor(fs::path(path).stem().string() + " is not running.");
    program.click("Bottom", "radio button");
    EXPECT_TRUE(waitUntil(
        [&] { return program.field("Placements", "appPath", path, "tuckEdge") == "bottom"; }));
    program.keepPicture("settings-uninstalled-sheet");
    program.click("Done");
    EXPECT_TRUE(program.waitUntilGone(sheet));
    program.waitFor(fs::path(path).stem().string() + ", ⌃⌥N, Not installed");
    program.keepPicture("settings-uninstalled");
    EXPECT_EQ(hotKeyOf(path), shortcut);
}

TEST_F(ProgramSettingsTroubleTest, AStoreThatCannotBeWrittenIsSaidAndNothingIsLost) {
    program.bind({{path, shortcut, "left"}});
    const xcb_window_t window = program.openSettings({.prefix = ProgramOnX::boundByPermissions()});
    const std::string before = program.settingsText();
    fs::permissions(program.settingsFolder, fs::perms::owner_read | fs::perms::owner_exec);

    program.click("Select notes for removal");
    program.click("Remove the selected app");
    program.waitFor("The settings could not be saved");
    program.waitFor("Edit notes");
    program.click("Edit notes");
    const xcb_window_t sheet = program.waitForDialog(window);
    program.startRecording();
    program.press("control,option,J");
    program.waitFor("Shortcut: ⌃⌥N");
    program.waitFor("The settings could not be saved");
    program.keepPicture("settings-not-saved");
    program.click("Done");
    EXPECT_TRUE(program.waitUntilGone(sheet));
    EXPECT_EQ(program.settingsText(), before);

    // And it works with what there is.
    fs::permissions(program.settingsFolder, fs::perms::owner_all);
    program.press(shortcut);
    EXPECT_TRUE(program.waitUntilActive(program.notes.waitForWindow()));
    program.probe().activate(window);
    program.click("Select notes for removal");
    program.click("Remove the selected app");
    program.waitFor(noApps);
    EXPECT_TRUE(program.isGone("The settings could not be saved"));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramSettingsTroubleTest, TerminatedWithASheetOpenItEndsAndKeepsWhatWasSet) {
    program.bind({{path, shortcut}});
    const xcb_window_t window = program.openSettings();
    program.click("Edit notes");
    program.waitForDialog(window);
    program.startRecording();
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_EQ(hotKeyOf(path), shortcut);
}

// The interface module ----------------------------------------------------------------------------

TEST(InterfaceModuleTest, AProgramOfAnotherVersionGetsNoInterface) {
    void* const module = dlopen(QUORVEL_INTERFACE_MODULE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    const auto create = reinterpret_cast<CreateInterface>(dlsym(module, interfaceEntryName));
    ASSERT_NE(create, nullptr);
    EXPECT_EQ(create(interfaceVersion + 1, nullptr), nullptr);
    EXPECT_EQ(create(interfaceVersion - 1, nullptr), nullptr);
}

TEST(InterfaceModuleTest, AModuleOfAnotherVersionIsALineInTheLogAndShortcutsWork) {
    ProgramWithNotes program;
    const fs::path folder = program.session.folder() / "mixed";
    fs::create_directory(folder);
    fs::copy_file(ProgramOnX::defaultPath(), folder / "Quorvel");
    fs::copy_file(QUORVEL_OTHER_MODULE, folder / interfaceModuleName);
    program.bind({{program.path, program.shortcut}});
    program.start({.executable = folder / "Quorvel"});
    ChildProcess second = program.session.start({(folder / "Quorvel").string()});
    EXPECT_TRUE(program.waitForLine("Quorvel: settings not shown — the interface is missing"));
    EXPECT_THAT(program.linesSinceReady(),
                testing::ElementsAre("Quorvel: the interface module does not fit this program",
                                     "Quorvel: settings not shown — the interface is missing"));
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitUntilActive(program.notes.waitForWindow()));
    EXPECT_EQ(program.terminate(), 0);
}

}  // namespace
}  // namespace quorvel::test
