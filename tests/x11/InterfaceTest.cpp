// The windows of the program, under real window managers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/RunningProgram.hpp"

namespace quorvel::test {
namespace {

using testing::Contains;
using testing::Not;

class InterfaceTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    XSession session{{.windowManager = GetParam()}};
    const XProbe& probe = session.probe();
    RunningProgram program{session};
    TestClient client{session.displayName()};

    /// Another program has the keyboard.
    xcb_window_t openAnother() {
        const xcb_window_t window = session.open(client, {});
        probe.activate(window);
        EXPECT_TRUE(waitUntil([&] { return probe.activeWindow() == window; }));
        return window;
    }

    bool isDialog(xcb_window_t window) const {
        const auto types = probe.connection().property32(window, "_NET_WM_WINDOW_TYPE");
        return !types.empty() &&
               types.front() == probe.connection().atom("_NET_WM_WINDOW_TYPE_DIALOG");
    }

    std::string title(xcb_window_t window) const {
        return probe.connection().propertyText(window, "_NET_WM_NAME");
    }
};

TEST_P(InterfaceTest, AnAlertTakesTheKeyboardFromAnotherProgramAndEscapeGivesItBack) {
    program.configure(RunningProgram::bindingOfTheMissing);
    const ChildProcess process = program.start();
    const xcb_window_t another = openAnother();

    const xcb_window_t alert = program.raiseAlert(process);
    EXPECT_EQ(title(alert), "Quorvel");
    EXPECT_TRUE(isDialog(alert));
    EXPECT_TRUE(waitUntil([&] { return probe.isAbove(alert, another); }));
    ASSERT_TRUE(waitUntil([&] { return probe.inputFocus() == alert; }));

    session.input().tap("ESCAPE");
    EXPECT_TRUE(waitUntil([&] { return !probe.isManaged(alert); }));
    EXPECT_TRUE(waitUntil([&] { return probe.activeWindow() == another; }));
    EXPECT_TRUE(process.isRunning());
}

TEST_P(InterfaceTest, ReturnOpensTheSettingsAndTheyComeBackToTheFront) {
    program.configure(RunningProgram::bindingOfTheMissing);
    const ChildProcess process = program.start();
    const auto openSettings = [&] {
        const xcb_window_t alert = program.raiseAlert(process);
        EXPECT_TRUE(isDialog(alert));
        EXPECT_TRUE(waitUntil([&] { return probe.inputFocus() == alert; }));
        session.input().tap("RETURN");
        EXPECT_TRUE(waitUntil([&] { return !probe.isManaged(alert); }));
        return program.waitForWindow(process);
    };
    const xcb_window_t settings = openSettings();
    EXPECT_EQ(title(settings), "Quorvel");
    EXPECT_FALSE(isDialog(settings));

    const xcb_window_t another = openAnother();
    EXPECT_EQ(openSettings(), settings);
    EXPECT_TRUE(waitUntil([&] { return probe.isAbove(settings, another); }));
    EXPECT_TRUE(waitUntil([&] { return probe.inputFocus() == settings; }));
}

TEST_P(InterfaceTest, WithoutBindingsTheSettingsComeUpByThemselves) {
    openAnother();
    const ChildProcess process = program.start();
    EXPECT_EQ(title(program.waitForWindow(process)), "Quorvel");
    EXPECT_THAT(program.lines(), Contains("Quorvel: no apps bound; opening Settings"));
}

INSTANTIATE_TEST_SUITE_P(, InterfaceTest, testing::ValuesIn(allWindowManagers()),
                         [](const auto& tested) { return nameOf(tested.param); });

TEST(InterfaceWithoutManagerTest, AnAlertHasTheKeyboardAllTheSame) {
    XSession session({.windowManager = std::nullopt});
    const RunningProgram program(session);
    program.configure(RunningProgram::bindingOfTheMissing);
    const ChildProcess process = program.start();
    const xcb_window_t before = session.probe().inputFocus();
    session.input().chord({"Control", "Alt"}, "N");
    ASSERT_TRUE(waitUntil([&] { return session.probe().inputFocus() != before; }));
    const xcb_window_t alert = session.probe().inputFocus();
    session.input().tap("ESCAPE");
    EXPECT_TRUE(waitUntil([&] { return !session.probe().isViewable(alert); }));
}

}  // namespace
}  // namespace quorvel::test
