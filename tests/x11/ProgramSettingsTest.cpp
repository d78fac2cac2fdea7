// The settings window of the built program, used as people use it: by hand, by keyboard alone, and
// through a screen reader.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>

#include "tests/x11/SettingsOnX.hpp"

namespace quorvel::test {
namespace {

using testing::Contains;
using State = SettingsOnX::State;

constexpr const char* shortcut = "control,option,N";

class ProgramSettingsTest : public testing::Test {
protected:
    ProgramSettingsTest() = default;
    explicit ProgramSettingsTest(const XSessionOptions& options) : program(options) {}

    SettingsOnX program;
    const std::string path = program.notes.entry();

    XInput& input() { return program.input(); }

    std::string hotKeyOf(const std::string& appPath) const {
        return program.field("AppBindings", "appPath", appPath, "hotKey");
    }
    std::string placementOf(const std::string& appPath, const std::string& field) const {
        return program.field("Placements", "appPath", appPath, field);
    }
    testing::AssertionResult opensByShortcut() {
        program.press(shortcut);
        if (!program.waitUntilActive(program.notes.waitForWindow())) {
            return testing::AssertionFailure() << "it is not in front";
        }
        return program.notes.launches() == 1 ? testing::AssertionSuccess()
                                             : testing::AssertionFailure() << "started twice";
    }
    void chooseFromMenu(const std::function<void()>& open, int item = 0, int count = 1) {
        const Rect menu = program.menuAfter(open);
        input().moveTo(int(menu.x + menu.width / 2),
                       int(menu.y + (item + 0.5) * menu.height / count));
        input().click();
    }
    std::string registered() const {
        return "Quorvel: global hotkey registered (control,option,N) for " + path;
    }
};

TEST_F(ProgramSettingsTest, FromNothingBoundToAProgramThatOpensByItsShortcutAndCorner) {
    const xcb_window_t window = program.openSettings();
    program.waitFor("No apps yet. Add one, then click a corner or edge on a display below.");
    program.click("Add an app");
    const xcb_window_t chooser = program.waitForDialog(window);
    program.keepPicture("settings-1-choose");
    program.type("notes");
    input().tap("RETURN");
    EXPECT_TRUE(program.waitUntilGone(chooser));
    program.waitFor("Edit notes");
    EXPECT_EQ(hotKeyOf(path), "none");

    chooseFromMenu([&] { program.click("Top left corner, free"); });
    const xcb_window_t sheet = program.waitForDialog(window);
    EXPECT_TRUE(program.waitForState(program.waitFor("topLeft corner"), State::checked));
    EXPECT_EQ(placementOf(path, "corner"), "topLeft");

    program.startRecording();
    program.keepPicture("settings-2-record");
    program.press(shortcut);
    program.waitFor("Shortcut: ⌃⌥N");
    EXPECT_EQ(hotKeyOf(path), shortcut);
    program.click("Done");
    EXPECT_TRUE(program.waitUntilGone(sheet));
    program.waitFor("Top left corner, notes");
    program.keepPicture("settings-3-done");

    EXPECT_TRUE(opensByShortcut());
    const xcb_window_t notes = program.notes.waitForWindow();
    program.probe().activate(window);
    ASSERT_TRUE(program.waitUntilActive(window));
    input().moveTo(0, 0);
    EXPECT_TRUE(program.waitUntilActive(notes));
    EXPECT_THAT(program.logLines(), Contains(registered()));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramSettingsTest, AFreePlaceClickedWithNothingBoundLeadsThroughTheChooserToTheSheet) {
    const xcb_window_t window = program.openSettings();
    program.click("Left side, free");
    const xcb_window_t chooser = program.waitForDialog(window);
    program.type("notes");
    input().tap("RETURN");
    EXPECT_TRUE(program.waitUntilGone(chooser));
    program.waitForDialog(window);
    EXPECT_TRUE(program.waitForState(program.waitFor("Left", "radio button"), State::checked));
    EXPECT_TRUE(program.waitForState(program.waitFor("Whole", "radio button"), State::checked));
    EXPECT_EQ(placementOf(path, "tuckEdge"), "left");
    EXPECT_EQ(placementOf(path, "corner"), "none");
}

TEST_F(ProgramSettingsTest, TheWholeSetUpByKeyboardAlone) {
    const xcb_window_t window = program.openSettings();
    const auto goTo = [&](const std::string& name, const std::string& key = "TAB") {
        const auto isThere = [&] {
            const auto focused = program.application().focused();
            return focused && focused->node.name == name;
        };
        for (int steps = 0; !isThere(); ++steps) {
            if (steps == 40) throw std::runtime_error("no way by " + key + " to " + name);
            const auto before = program.application().focused();
            input().tap(key);
            waitUntil(
                [&] {
                    const auto now = program.application().focused();
                    return now && (!before || now->path != before->path ||
                                   now->node.name != before->node.name);
                },
                1s);
        }
    };

    goTo("Add an app");
    input().tap("SPACE");
    const xcb_window_t chooser = program.waitForDialog(window);
    program.type("notes");
    input().tap("RETURN");
    EXPECT_TRUE(program.waitUntilGone(chooser));
    ASSERT_TRUE(program.waitUntilActive(window));

    // To a place in the picture, there by arrows, and the menu.
    goTo("Top left corner, free");
    goTo("Top right corner, free", "RIGHT");
    goTo("Right side, free", "DOWN");
    program.keepPicture("settings-keyboard-place");
    program.menuAfter([&] { input().tap("RETURN"); });
    input().tap("DOWN");
    input().tap("RETURN");
    const xcb_window_t sheet = program.waitForDialog(window);
    EXPECT_TRUE(program.waitForState(program.waitFor("Right", "radio button"), State::checked));

    goTo("Shortcut: None");
    input().tap("SPACE");
    program.waitFor("Shortcut: Press the keys…");
    program.press(shortcut);
    program.waitFor("Shortcut: ⌃⌥N");
    goTo("No hot corner");
    input().tap("DOWN");
    EXPECT_TRUE(waitUntil([&] { return placementOf(path, "corner") == "bottomLeft"; }));
    input().tap("UP");
    EXPECT_TRUE(waitUntil([&] { return placementOf(path, "corner") == "topLeft"; }));
    goTo("Right");
    goTo("Whole");
    input().tap("RIGHT");
    EXPECT_TRUE(waitUntil([&] { return placementOf(path, "tuckEdge") == "top-right"; }));
    goTo("Auto-tuck");
    input().tap("SPACE");
    EXPECT_TRUE(waitUntil(
        [&] { return program.field("AppBindings", "appPath", path, "autoTuck") == "true"; }));
    program.keepPicture("settings-keyboard-sheet");
    input().tap("RETURN");
    EXPECT_TRUE(program.waitUntilGone(sheet));
    ASSERT_TRUE(program.waitUntilActive(window));
    program.waitFor("Right side, upper half, notes");

    // By keyboard the slider moves only what it says.
    goTo("Corner dwell");
    input().tap("RIGHT");
    program.waitFor("0.31 s");
    EXPECT_FALSE(program.stored("HotZoneDwellMs"));
    goTo("Slide");
    input().tap("DOWN");
    EXPECT_TRUE(waitUntil([&] { return program.stored("TuckAnimation") == Value("easeout"); }));
    goTo("Launch at login");
    const bool wasOn = program.opensAtLogin();
    input().tap("SPACE");
    EXPECT_TRUE(waitUntil([&] { return program.opensAtLogin() != wasOn; }));

    EXPECT_TRUE(opensByShortcut());
    program.probe().activate(window);
    ASSERT_TRUE(program.waitUntilActive(window));

    goTo("Select notes for removal");
    input().tap("SPACE");
    goTo("Remove the selected app");
    input().tap("SPACE");
    program.waitFor("Right side, free");
    EXPECT_EQ(hotKeyOf(path), "");
    goTo("Restore Defaults");
    input().tap("SPACE");
    EXPECT_TRUE(waitUntil([&] { return !program.stored("TuckAnimation"); }));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramSettingsTest, TheWholeSetUpThroughTheAccessibilityBus) {
    const xcb_window_t window = program.openSettings();
    AccessibleApplication& reader = program.application();
    const auto press = [&](const std::string& name, const std::string& role = "push button") {
        ASSERT_TRUE(reader.act(program.waitFor(name, role), "Press")) << name;
    };
    press("Add an app");
    const xcb_window_t chooser = program.waitForDialog(window);
    ASSERT_TRUE(reader.setText(program.waitFor("Search"), "notes"));
    EXPECT_TRUE(program.isGone("XTerm", "list item"));
    press("Add");
    EXPECT_TRUE(program.waitUntilGone(chooser));
    reader.listen();
    program.menuAfter([&] { press("Bottom right corner, free"); });
    input().tap("DOWN");
    EXPECT_TRUE(reader.waitForAnnouncement("notes"));
    input().tap("RETURN");
    const xcb_window_t sheet = program.waitForDialog(window);
    press("Shortcut: None");
    program.waitFor("Shortcut: Press the keys…");
    program.press(shortcut);
    program.waitFor("Shortcut: ⌃⌥N");
    ASSERT_TRUE(reader.act(program.waitFor("Left", "radio button"), "Toggle"));
    EXPECT_TRUE(waitUntil([&] { return placementOf(path, "tuckEdge") == "left"; }));
    EXPECT_EQ(placementOf(path, "corner"), "bottomRight");
    ASSERT_TRUE(reader.act(program.waitFor("topLeft corner"), "Toggle"));
    EXPECT_TRUE(waitUntil([&] { return placementOf(path, "corner") == "topLeft"; }));
    ASSERT_TRUE(reader.act(program.waitFor("Auto-tuck"), "Toggle"));
    EXPECT_TRUE(waitUntil(
        [&] { return program.field("AppBindings", "appPath", path, "autoTuck") == "true"; }));
    press("Done");
    EXPECT_TRUE(program.waitUntilGone(sheet));
    program.waitFor("Top left corner, notes");
    program.waitFor("Left side, notes");
    EXPECT_TRUE(opensByShortcut());

    const auto login = program.waitFor("Launch at login");
    const bool wasOn = program.opensAtLogin();
    ASSERT_TRUE(reader.act(login, "Toggle"));
    EXPECT_TRUE(waitUntil([&] { return program.opensAtLogin() != wasOn; }));
    ASSERT_TRUE(reader.act(program.waitFor("Select notes for removal"), "Toggle"));
    EXPECT_TRUE(program.waitForState(program.waitFor("Remove the selected app"), State::enabled));
    press("Remove the selected app");
    EXPECT_TRUE(waitUntil([&] { return hotKeyOf(path).empty(); }));
}

TEST_F(ProgramSettingsTest, AShortcutThatAnotherProgramHoldsIsRefusedAndNothingIsStored) {
    const XClient another(program.session.displayName());
    const xcb_generic_error_t* const error = xcb_request_check(
        another.xcb(), xcb_grab_key_checked(
                           another.xcb(), 1, another.root(), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1,
                           input().keycode("K"), XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    ASSERT_EQ(error, nullptr);
    program.bind({{path, shortcut}});
    const xcb_window_t window = program.openSettings();
    program.click("Edit notes");
    const xcb_window_t sheet = program.waitForDialog(window);
    const std::string before = program.settingsText();
    program.startRecording();
    program.press("control,option,K");
    program.waitFor("⌃⌥K is already used by another app.");
    program.keepPicture("settings-taken");
    program.waitFor("Shortcut: ⌃⌥N");
    EXPECT_EQ(program.settingsText(), before);
    program.click("Cancel");
    EXPECT_TRUE(program.waitUntilGone(sheet));
    EXPECT_TRUE(opensByShortcut());
}

TEST_F(ProgramSettingsTest, TwoProgramsOnOneEdgeAreWarnedAboutUntilTheyShareIt) {
    const TestApplication tasks(program.session, QUORVEL_TEST_APPLICATION, {.name = "tasks"});
    const std::string tasksPath = tasks.entry();
    program.bind({{path, shortcut, "left"}, {tasksPath, "control,option,K"}});
    const xcb_window_t window = program.openSettings();
    chooseFromMenu([&] { program.click("Top right corner, free"); }, 1, 2);
    xcb_window_t sheet = program.waitForDialog(window);
    program.click("Left", "radio button");
    EXPECT_TRUE(waitUntil([&] { return placementOf(tasksPath, "tuckEdge") == "left"; }));
    program.click("Done");
    EXPECT_TRUE(program.waitUntilGone(sheet));
    const auto sign = program.waitFor("Warning");
    EXPECT_NE(program.application().descriptionOf(sign), "");
    program.keepPicture("settings-conflict");

    const auto takeHalf = [&](const std::string& row, const std::string& half) {
        program.click("Edit " + row + " — left tuck");
        sheet = program.waitForDialog(window);
        program.click(half, "radio button");
        EXPECT_TRUE(program.waitForState(program.waitFor(half, "radio button"), State::checked));
        program.click("Done");
        EXPECT_TRUE(program.waitUntilGone(sheet));
    };
    takeHalf("notes", "Top Half");
    takeHalf("tasks", "Bottom Half");
    EXPECT_TRUE(program.isGone("Warning"));
    program.waitFor("Edit notes — top-left tuck");
    program.waitFor("Edit tasks — bottom-left tuck");
}

TEST_F(ProgramSettingsTest, WhatWasShownBeforeIsGoneHoweverOftenItIsOpened) {
    program.bind({{path, shortcut}});
    program.openSettings();
    for (int i = 0; i < 3; ++i) program.showSettings();
    const auto panes = [&] {
        const auto all = program.application().widgets();
        return std::count_if(all.begin(), all.end(),
                             [](const auto& each) { return each.node.name == "Apps"; });
    };
    EXPECT_TRUE(waitUntil([&] { return panes() == 1; })) << panes();
}

TEST_F(ProgramSettingsTest, ADoubleClickOnPlusLeavesTheKeyboardWithTheChooser) {
    const xcb_window_t window = program.openSettings();
    for (int attempt = 0; attempt < 3; ++attempt) {
        program.click("Add an app");
        for (int clicks = 0; clicks < 1 + attempt; ++clicks) input().click();
        const xcb_window_t chooser = program.waitForDialog(window);
        EXPECT_TRUE(program.waitForFocus("Search"));
        program.type("notes");
        EXPECT_TRUE(program.isGone("XTerm", "list item"));
        input().tap("ESCAPE");
        EXPECT_TRUE(program.waitUntilGone(chooser));
        ASSERT_TRUE(program.waitUntilActive(window));
    }
}

TEST_F(ProgramSettingsTest, RestoringTheDefaultsLeavesNothingBound) {
    program.bind({{path, shortcut, "left"}}, "spring");
    program.openSettings();
    program.click("Restore Defaults");
    program.waitFor("No apps yet. Add one, then click a corner or edge on a display below.");
    program.waitFor("Slide", "combo box");
    for (const char* key : {"AppBindings", "Placements", "TuckAnimation"}) {
        EXPECT_FALSE(program.stored(key)) << key;
    }
    program.press(shortcut);
    EXPECT_TRUE(neverWithin(300ms, [&] { return program.notes.launches() > 0; }));
}

/// Counts how often the settings file is replaced.
class WriteCounter {
public:
    explicit WriteCounter(const std::filesystem::path& folder) {
        inotify_add_watch(descriptor.get(), folder.c_str(), IN_MOVED_TO | IN_CLOSE_WRITE);
    }
    /// Since the last time.
    int writes() {
        alignas(inotify_event) char buffer[4096];
        int count = 0;
        ssize_t length = 0;
        while ((length = read(descriptor.get(), buffer, sizeof buffer)) > 0) {
            for (ssize_t at = 0; at < length;) {
                const auto* const event = reinterpret_cast<const inotify_event*>(buffer + at);
                if (std::string(event->name) == "defaults.json") ++count;
                at += static_cast<ssize_t>(sizeof *event + event->len);
            }
        }
        return count;
    }

private:
    FileDescriptor descriptor{inotify_init1(IN_NONBLOCK | IN_CLOEXEC)};
};

TEST_F(ProgramSettingsTest, TheDwellSliderIsStoredOnceWhenItIsLetGo) {
    program.bind({{path, shortcut}});
    program.openSettings();
    const auto slider = program.waitFor("Corner dwell", "slider");
    program.waitFor("0.30 s");
    WriteCounter counter(program.settingsFolder);
    const Rect area = program.application().areaOf(slider);
    const int y = int(area.y + area.height / 2);
    constexpr double handle = 12;
    const double start = area.x + handle / 2 + (area.width - handle) * (300 - 100) / 1400;
    input().moveTo(int(start), y);
    input().pressButton(1);
    std::string label = "0.30 s";
    const auto labelNow = [&] {
        for (const auto& each : program.application().widgets()) {
            if (each.node.role == "label" && each.node.name.ends_with(" s")) return each.node.name;
        }
        return std::string();
    };
    for (int step = 1; step <= 4; ++step) {
        input().moveTo(int(start) + 20 * step, y);
        EXPECT_TRUE(waitUntil([&] { return labelNow() != label; }));
        label = labelNow();
    }
    EXPECT_EQ(counter.writes(), 0);
    EXPECT_FALSE(program.stored("HotZoneDwellMs"));
    input().releaseButton(1);
    EXPECT_TRUE(waitUntil([&] { return program.stored("HotZoneDwellMs").has_value(); }));
    EXPECT_TRUE(neverWithin(100ms, [&] { return labelNow() != label; }));
    EXPECT_EQ(counter.writes(), 1);
    const auto stored = program.stored("HotZoneDwellMs");
    ASSERT_TRUE(stored->integer());
    char expected[32];
    std::snprintf(expected, sizeof expected, "%.2f s", double(*stored->integer()) / 1000);
    EXPECT_EQ(label, expected);
    EXPECT_GT(*stored->integer(), 700);
}

class ProgramSettingsOnTwoDisplays : public ProgramSettingsTest {
protected:
    ProgramSettingsOnTwoDisplays() : ProgramSettingsTest({.server = XServerKind::hotPlug}) {}
};

TEST_F(ProgramSettingsOnTwoDisplays, AnUnpluggedDisplayIsForgottenOnceThatIsConfirmed) {
    XServer& server = program.session.server();
    server.plug("DUMMY1", 1280, 0);
    program.bind({{.appPath = path, .hotKey = shortcut, .edge = "right", .display = 1}});
    const xcb_window_t window = program.openSettings();
    EXPECT_TRUE(program.isGone("Not connected"));
    server.unplug("DUMMY1");
    program.waitFor("Not connected");
    program.keepPicture("settings-unplugged");
    const auto before = program.stored();

    program.click("Forget This Display…");
    xcb_window_t alert = program.waitForDialog(window);
    program.waitFor("Forget this display?");
    input().tap("ESCAPE");
    EXPECT_TRUE(program.waitUntilGone(alert));
    EXPECT_EQ(program.stored(), before);

    program.click("Forget This Display…");
    alert = program.waitForDialog(window);
    program.click("Forget", "push button");
    EXPECT_TRUE(program.waitUntilGone(alert));
    EXPECT_TRUE(program.isGone("Not connected"));
    EXPECT_EQ(placementOf(path, "display"), "");
    const auto known = program.stored("KnownDisplays");
    ASSERT_TRUE(known && known->dictionary());
    EXPECT_EQ(known->dictionary()->size(), 1U);
}

TEST_F(ProgramSettingsOnTwoDisplays, TheWindowComesAlongWhenItsDisplayIsUnplugged) {
    XServer& server = program.session.server();
    server.plug("DUMMY1", 1280, 0);
    program.bind({{path, shortcut}});
    const xcb_window_t window = program.openSettings();
    program.waitFor("DUMMY1", "panel");
    program.probe().requestMove(window, 1700, 100);
    ASSERT_TRUE(waitUntil([&] { return program.seen(window).x > 1280; }));
    server.unplug("DUMMY1");
    EXPECT_TRUE(waitUntil([&] {
        const Rect seen = program.seen(window);
        return seen.x >= 0 && seen.maxX() <= 1280 && seen.y >= 0 && seen.maxY() <= 800;
    })) << testing::PrintToString(program.seen(window));
}

TEST_F(ProgramSettingsOnTwoDisplays, ADisplayPluggedInWhileTheWindowIsOpenHasItsPictureAtOnce) {
    program.bind({{path, shortcut}});
    program.openSettings();
    program.waitFor("DUMMY0", "panel");
    program.session.server().plug("DUMMY1", 1280, 0);
    program.waitFor("DUMMY1", "panel");
}

// The keys that a window manager owns -------------------------------------------------------------

class ProgramRecorderTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    SettingsOnX program{{.windowManager = GetParam()}};
    const std::string path = program.notes.entry();

    bool keyboardIsFree() const {
        const XClient client(program.session.displayName());
        const std::unique_ptr<xcb_grab_keyboard_reply_t, decltype(&std::free)> reply(
            xcb_grab_keyboard_reply(
                client.xcb(),
                xcb_grab_keyboard(client.xcb(), 0, client.root(), XCB_CURRENT_TIME,
                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                nullptr),
            &std::free);
        return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }
    bool isRecording() {
        return program.application().find("Shortcut: Press the keys…").has_value();
    }
};

TEST_P(ProgramRecorderTest, KeysOfTheWindowManagerReachTheRecorderAndOnlyWhileItRecords) {
    TestApplication tasks(program.session, QUORVEL_TEST_APPLICATION, {.name = "tasks"});
    const std::string tasksPath = tasks.entry();
    program.bind({{path, shortcut}, {tasksPath, "control,option,K", "left"}});
    const xcb_window_t window = program.openSettings();
    program.click("Edit notes");
    const xcb_window_t sheet = program.waitForDialog(window);
    EXPECT_TRUE(keyboardIsFree());
    for (const char* keys : {"option,F4", "command,D", "control,option,LEFT", "option,TAB"}) {
        SCOPED_TRACE(keys);
        program.startRecording();

        EXPECT_TRUE(waitUntil([&] { return !keyboardIsFree(); }));

        program.press(keys);

        EXPECT_TRUE(waitUntil([&] { return !isRecording(); }));

        EXPECT_TRUE(waitUntil([&] { return keyboardIsFree(); }));

        EXPECT_TRUE(waitUntil([&] { return program.probe().inputFocus() == sheet; }));

        // Stored or refused: either way it is what came.
        const std::string stored = program.field("AppBindings", "appPath", path, "hotKey");
        bool isRefused = false;
        for (const auto& each : program.application().widgets()) {
            isRefused = isRefused || each.node.name.ends_with(" is already used by another app.");
        }
        EXPECT_TRUE(stored == keys || isRefused) << stored;
    }
    program.click("Done");
    EXPECT_TRUE(program.waitUntilGone(sheet));
    // Shortcuts are let go of and taken again then.
    EXPECT_TRUE(program.waitForRegistrations(2));
    program.press("control,option,K");
    const xcb_window_t opened = tasks.waitForWindow();
    EXPECT_TRUE(program.waitUntilActive(opened));
    const Rect home = program.settledFrame(opened);
    program.press("control,option,K");
    EXPECT_TRUE(program.waitForFrame(opened, ProgramOnX::atLeftEdge(home)));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_P(ProgramRecorderTest, AnotherWindowInFrontEndsTheRecording) {
    program.bind({{path, shortcut}});
    const xcb_window_t window = program.openSettings();
    program.click("Edit notes");
    program.waitForDialog(window);
    program.startRecording();
    TestClient client(program.session.displayName());
    const xcb_window_t another = program.session.open(client, {.area = {20, 20, 200, 150}});
    program.probe().activate(another);
    EXPECT_TRUE(program.waitUntilActive(another));
    EXPECT_TRUE(waitUntil([&] { return keyboardIsFree(); }));
    program.press("control,option,K");
    EXPECT_TRUE(program.isGone("Shortcut: Press the keys…"));
    EXPECT_EQ(program.field("AppBindings", "appPath", path, "hotKey"), shortcut);
}

INSTANTIATE_TEST_SUITE_P(, ProgramRecorderTest, testing::ValuesIn(allWindowManagers()),
                         testing::PrintToStringParamName());

TEST_F(ProgramSettingsTest, TheRecorderGoesByPlaceAlsoOnALayoutWithoutLatinLetters) {
    ChildProcess change = program.session.start({"setxkbmap", "-layout", "ru"});
    ASSERT_TRUE(waitUntil([&] { return !change.isRunning(); }));
    program.bind({{path, "none"}});
    const xcb_window_t window = program.openSettings();
    program.click("Edit notes");
    program.waitForDialog(window);
    program.startRecording();
    // The one after a change of the keyboard map is often lost.
    input().tap("Shift");
    program.press(shortcut);
    program.waitFor("Shortcut: ⌃⌥N");
    EXPECT_EQ(hotKeyOf(path), shortcut);
    program.click("Done");
    EXPECT_TRUE(program.waitForRegistrations(1));
    EXPECT_TRUE(opensByShortcut());
}

}  // namespace
}  // namespace quorvel::test
