// The keys that the program answers to, and those that it leaves to others.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ProgramShortcutsTest : public testing::Test {
protected:
    ProgramWithNotes program;

    std::string registered() const {
        return "Quorvel: global hotkey registered (control,option,N) for " + program.path;
    }

    /// Nothing is started for longer than it would take.
    bool nothingHappens() {
        return neverWithin(400ms, [&] { return program.notes.launches() > 0; });
    }
};

TEST_F(ProgramShortcutsTest, AShortcutThatWasTakenOutIsDeadAfterTheNextStart) {
    const xcb_window_t window = program.startWithWindow("left");
    EXPECT_EQ(program.terminate(), 0);
    program.bind({{program.path, "none", "left"}});
    program.start();
    EXPECT_THAT(program.linesSinceReady(), IsEmpty());
    const Rect home = program.seen(window);
    program.press(program.shortcut);
    EXPECT_TRUE(program.staysAt(window, home));
    EXPECT_EQ(program.notes.launches(), 1);
    EXPECT_THAT(program.linesSinceReady(), IsEmpty());
}

TEST_F(ProgramShortcutsTest, AfterItsEndAPressIsLeftToOthers) {
    program.bind({{program.path, program.shortcut}});
    program.start();
    EXPECT_EQ(program.terminate(), 0);
    program.press(program.shortcut);
    EXPECT_TRUE(nothingHappens());
    TestClient other(program.session.displayName());
    EXPECT_EQ(
        other.grabKey(program.session.input().keycode("N"), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1),
        0);
}

TEST_F(ProgramShortcutsTest, AHeldKeyCountsOnce) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect tucked = ProgramOnX::atLeftEdge(program.seen(window));
    XInput& input = program.session.input();
    input.press("Control");
    input.press("Alt");
    input.press("N");
    EXPECT_TRUE(program.waitForFrame(window, tucked));
    // The keyboard starts to repeat after 660 ms.
    EXPECT_TRUE(neverWithin(1200ms, [&] { return program.seen(window) != tucked; }));
    input.releaseAll();
    EXPECT_TRUE(program.staysAt(window, tucked));
    EXPECT_THAT(program.linesSinceReady(),
                ElementsAre("Quorvel: tucked " + program.path + " window to left"));
}

TEST_F(ProgramShortcutsTest, TheLocksDoNotMatter) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.seen(window);
    const Rect tucked = ProgramOnX::atLeftEdge(home);
    XInput& input = program.session.input();
    input.tap("CapsLock");
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitForFrame(window, tucked));
    input.tap("NumLock");
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitForFrame(window, home));
    input.tap("CapsLock");
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitForFrame(window, tucked));
}

TEST_F(ProgramShortcutsTest, OtherModifiersAreAnotherShortcut) {
    program.bind({{program.path, program.shortcut}});
    program.start();
    for (const char* other : {"control,N", "option,N", "control,option,shift,N",
                              "control,option,command,N", "control,option,M"}) {
        program.press(other);
    }
    EXPECT_TRUE(nothingHappens());
    program.press(program.shortcut);
    EXPECT_TRUE(program.notes.waitUntilRunning());
}

TEST_F(ProgramShortcutsTest, AShortcutThatAnotherProgramHoldsIsRefusedInOneLine) {
    TestClient other(program.session.displayName());
    ASSERT_EQ(
        other.grabKey(program.session.input().keycode("N"), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1),
        0);
    program.bind({{program.path, program.shortcut}, {"/opt/x.desktop", "control,option,X"}});
    program.start();
    EXPECT_THAT(
        program.logLines(),
        ElementsAre(
            "Quorvel: hotkey 'control,option,N' for " + program.path + " rejected (error 10)",
            "Quorvel: global hotkey registered (control,option,X) for /opt/x.desktop",
            "Quorvel: no hot corners placed.", "Quorvel: edge reveal watcher armed",
            "Quorvel: ready — 2 app(s) bound", "Quorvel: accessibility granted"));
    program.press(program.shortcut);
    EXPECT_TRUE(nothingHappens());
}

TEST_F(ProgramShortcutsTest, TheSecondOfTwoEqualShortcutsIsRefused) {
    program.bind({{program.path, program.shortcut}, {"/opt/x.desktop", "option,control,n"}});
    program.start();
    EXPECT_THAT(program.logLines(),
                ElementsAre(registered(),
                            "Quorvel: hotkey 'option,control,n' for /opt/x.desktop rejected "
                            "(error 10)",
                            "Quorvel: no hot corners placed.", "Quorvel: edge reveal watcher armed",
                            "Quorvel: ready — 2 app(s) bound", "Quorvel: accessibility granted"));
    program.press(program.shortcut);
    EXPECT_TRUE(program.notes.waitUntilRunning());
}

TEST_F(ProgramShortcutsTest, AShortcutThatMakesNoSenseDropsItsBinding) {
    program.bind({{"/opt/x.desktop", "control,option,Nonsense"}, {program.path, program.shortcut}});
    program.start();
    EXPECT_THAT(program.logLines(),
                ElementsAre("Quorvel: binding dropped — /opt/x.desktop: unusable hotkey "
                            "'control,option,Nonsense'",
                            registered(), "Quorvel: no hot corners placed.",
                            "Quorvel: edge reveal watcher armed", "Quorvel: ready — 1 app(s) bound",
                            "Quorvel: accessibility granted"));
    program.press(program.shortcut);
    EXPECT_TRUE(program.notes.waitUntilRunning());
}

TEST_F(ProgramShortcutsTest, WithAllBindingsDroppedTheSettingsStayClosed) {
    program.bind({{"/opt/x.desktop", "Nonsense"}});
    program.start();
    EXPECT_TRUE(neverWithin(
        300ms, [&] { return program.probe().windowOfClass("Quorvel") != XCB_WINDOW_NONE; }));
    EXPECT_THAT(program.linesSinceReady(), IsEmpty());
}

TEST_F(ProgramShortcutsTest, ASecondPressWhileItStartsDoesNotStartItTwice) {
    program.bind({{program.path, program.shortcut}});
    program.start();
    program.press(program.shortcut);
    program.press(program.shortcut);
    const xcb_window_t window = program.notes.waitForWindow();
    EXPECT_TRUE(program.waitUntilActive(window));
    EXPECT_TRUE(neverWithin(300ms, [&] { return program.notes.launches() > 1; }));
}

TEST_F(ProgramShortcutsTest, ManyPressesInARowEndWhereTheLastOneSays) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.seen(window);
    // Ten: there and back, five times, each cutting the slide before it short.
    for (int i = 0; i < 10; ++i) program.press(program.shortcut);
    EXPECT_TRUE(waitUntil([&] { return program.linesSinceReady().size() == 10; }));
    EXPECT_TRUE(program.waitForFrame(window, home));
    EXPECT_TRUE(program.staysAt(window, home));
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
}

}  // namespace
}  // namespace quorvel::test
