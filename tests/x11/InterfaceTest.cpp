// The windows of the program come to the front under every window manager, and without one.

#include <gtest/gtest.h>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

constexpr const char* missingPath = "/usr/share/applications/nowhere.desktop";
constexpr const char* shortcut = "control,option,N";

class InterfaceTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    ProgramOnX program{{.windowManager = GetParam()}};
    const XProbe& probe = program.probe();
    TestClient client{program.session.displayName()};

    /// Another program has the keyboard.
    xcb_window_t openAnother() {
        const xcb_window_t window = program.session.open(client, {});
        probe.activate(window);
        EXPECT_TRUE(waitUntil([&] { return probe.activeWindow() == window; }));
        return window;
    }

    bool isDialog(xcb_window_t window) const {
        const auto types = probe.connection().property32(window, "_NET_WM_WINDOW_TYPE");
        return !types.empty() &&
               types.front() == probe.connection().atom("_NET_WM_WINDOW_TYPE_DIALOG");
    }

    /// The window of the program that is active and of this kind.
    xcb_window_t waitForFront(bool dialog) const {
        xcb_window_t window = XCB_WINDOW_NONE;
        const bool came = waitUntil([&] {
            window = probe.activeWindow();
            // Some call a window active for a moment after it has closed.
            return probe.isManaged(window) &&
                   program.titleOf(window) == (dialog ? "Quorvel" : "Quorvel Settings") &&
                   isDialog(window) == dialog && probe.inputFocus() == window;
        });
        EXPECT_TRUE(came) << "no window of the program has come to the front";
        return window;
    }

    xcb_window_t raiseAlert() {
        program.press(shortcut);
        return waitForFront(true);
    }
};

TEST_P(InterfaceTest, AnAlertTakesTheKeyboardFromAnotherProgramAndEscapeGivesItBack) {
    program.bind({{missingPath, shortcut}});
    program.start();
    const xcb_window_t another = openAnother();

    const xcb_window_t alert = raiseAlert();
    EXPECT_TRUE(waitUntil([&] { return probe.isAbove(alert, another); }));
    program.session.input().tap("ESCAPE");
    EXPECT_TRUE(program.waitUntilGone(alert));
    EXPECT_TRUE(waitUntil([&] { return probe.activeWindow() == another; }));
    EXPECT_TRUE(program.isRunning());
}

TEST_P(InterfaceTest, TheSettingsComeBackToTheFrontWhenTheyAreOpenedAgain) {
    program.bind({{missingPath, shortcut}});
    program.start();
    const auto openSettings = [&] {
        const xcb_window_t alert = raiseAlert();
        program.session.input().tap("RETURN");
        EXPECT_TRUE(program.waitUntilGone(alert));
        return waitForFront(false);
    };
    const xcb_window_t settings = openSettings();
    const xcb_window_t another = openAnother();
    EXPECT_EQ(openSettings(), settings);
    EXPECT_TRUE(waitUntil([&] { return probe.isAbove(settings, another); }));
}

TEST_P(InterfaceTest, WithoutBindingsTheSettingsTakeTheKeyboardFromAnotherProgram) {
    openAnother();
    program.start();
    waitForFront(false);
}

INSTANTIATE_TEST_SUITE_P(, InterfaceTest, testing::ValuesIn(allWindowManagers()),
                         [](const auto& tested) { return nameOf(tested.param); });

TEST(InterfaceWithoutManagerTest, AnAlertHasTheKeyboardAllTheSame) {
    ProgramOnX program({.windowManager = std::nullopt});
    program.bind({{missingPath, shortcut}});
    program.start();
    const XProbe& probe = program.probe();
    const xcb_window_t before = probe.inputFocus();
    program.press(shortcut);
    ASSERT_TRUE(waitUntil([&] { return probe.inputFocus() != before; }));
    const xcb_window_t alert = probe.inputFocus();
    program.session.input().tap("ESCAPE");
    EXPECT_TRUE(waitUntil([&] { return !probe.isViewable(alert); }));
}

}  // namespace
}  // namespace quorvel::test
