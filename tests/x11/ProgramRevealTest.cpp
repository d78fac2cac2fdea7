// Tucked windows under the pointer, and in the hands of others.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr const char* released = "Quorvel: released a tucked window — moved externally or closed";

class ProgramReveal {
public:
    explicit ProgramReveal(XSessionOptions options = {}) : program(options) {}

    void tuck() {
        window = program.startWithWindow("left");
        home = program.settledFrame(window);
        tucked = ProgramOnX::atLeftEdge(home);
        revealed = {0, home.y, home.width, home.height};
        pointAway();
        program.press(program.shortcut);
        ASSERT_TRUE(program.waitForFrame(window, tucked));
        ASSERT_TRUE(program.staysAt(window, tucked));
    }
    void pointAtStrip() { input.moveTo(0, int(home.y + home.height / 2)); }
    void pointAway() { input.moveTo(900, 700); }
    void reveal() {
        pointAtStrip();
        ASSERT_TRUE(program.waitForFrame(window, revealed));
    }
    testing::AssertionResult staysTucked() const {
        if (neverWithin(600ms, [&] { return program.seen(window) != tucked; })) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure()
               << "it is at " << testing::PrintToString(program.seen(window));
    }
    bool isReachable() const {
        const Rect now = program.seen(window);
        return now.maxX() >= 42 && now.x <= 1280 - 42 && now.y >= 0 && now.y <= 800 - 42;
    }

    ProgramWithNotes program;
    XInput& input = program.session.input();
    xcb_window_t window = XCB_WINDOW_NONE;
    Rect home;
    Rect tucked;
    Rect revealed;
};

class ProgramRevealTest : public testing::Test, protected ProgramReveal {};

TEST_F(ProgramRevealTest, AHeldButtonOnTheStripRevealsNothingUntilItIsLetGo) {
    tuck();
    input.pressButton(1);
    pointAtStrip();
    EXPECT_TRUE(staysTucked());
    input.releaseButton(1);
    EXPECT_TRUE(program.waitForFrame(window, revealed));
    EXPECT_TRUE(program.staysAt(window, revealed));
}

TEST_F(ProgramRevealTest, AStripThatIsOnlyCrossedRevealsNothing) {
    tuck();
    for (int i = 0; i < 20; ++i) {
        pointAtStrip();
        pointAway();
    }
    EXPECT_TRUE(staysTucked());
}

TEST_F(ProgramRevealTest, ARevealedWindowStaysOutWhileAButtonIsHeldBesideIt) {
    tuck();
    reveal();
    input.moveTo(100, int(home.y + home.height / 2));
    input.pressButton(1);
    input.moveTo(900, 700);
    EXPECT_TRUE(program.staysAt(window, revealed));
    input.releaseButton(1);
    EXPECT_TRUE(program.waitForFrame(window, tucked));
}

TEST_F(ProgramRevealTest, TenPointsBesideARevealedWindowKeepItAndTwentyDoNot) {
    tuck();
    reveal();
    const int middle = int(home.y + home.height / 2);
    input.moveTo(int(revealed.maxX()) + 10, middle);
    EXPECT_TRUE(program.staysAt(window, revealed));
    input.moveTo(int(revealed.maxX()) + 20, middle);
    EXPECT_TRUE(program.waitForFrame(window, tucked));
}

TEST_F(ProgramRevealTest, AMovedWindowIsLetGoAndTuckedAgainByTheShortcut) {
    tuck();
    program.probe().requestMove(window, 300, 200);
    EXPECT_TRUE(program.waitForLine(released));
    const Rect moved{300, 200, home.width, home.height};
    EXPECT_TRUE(program.waitForFrame(window, moved));
    program.probe().activate(window);
    ASSERT_TRUE(program.waitUntilActive(window));
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(moved)));
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(program.waitForFrame(window, moved));
}

TEST_F(ProgramRevealTest, ADriftOf39PointsIsNotAMove) {
    tuck();
    program.probe().requestMove(window, int(tucked.x) + 39, int(tucked.y) + 39);
    EXPECT_TRUE(
        program.waitForFrame(window, {tucked.x + 39, tucked.y + 39, tucked.width, tucked.height}));
    EXPECT_TRUE(neverWithin(500ms, [&] { return program.linesSinceReady().size() > 1; }));
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(program.waitForFrame(window, home));
}

TEST_F(ProgramRevealTest, AClosedWindowIsLetGoAtOnce) {
    tuck();
    program.notes.close(window);
    EXPECT_TRUE(program.waitForLine(released));
}

TEST_F(ProgramRevealTest, AnApplicationThatCrashesIsLetGoAndCanBeOpenedAgain) {
    tuck();
    program.notes.kill();
    EXPECT_TRUE(program.waitForLine(released));
    program.press(program.shortcut);
    const xcb_window_t another = program.notes.waitForWindow();
    EXPECT_TRUE(program.waitUntilActive(another));
}

TEST_F(ProgramRevealTest, AnApplicationThatDoesNotAnswerComesOutAndGoesBackToo) {
    tuck();
    program.notes.suspend();
    reveal();
    pointAway();
    EXPECT_TRUE(program.waitForFrame(window, tucked));
    program.notes.resume();
    EXPECT_TRUE(program.staysAt(window, tucked));
}

/// With one window manager after the other.
class ProgramChangesManagerTest : public testing::TestWithParam<WindowManagerKind>,
                                  protected ProgramReveal {
protected:
    ProgramChangesManagerTest() : ProgramReveal({.windowManager = GetParam()}) {}

    void replaceManager() {
        const auto next = GetParam() == WindowManagerKind::openbox ? WindowManagerKind::kwin
                                                                   : WindowManagerKind::openbox;
        program.session.stopWindowManager();
        program.session.startWindowManager(next);
        ASSERT_TRUE(waitUntil([&] { return program.probe().isManaged(window); }));
    }
};

TEST_P(ProgramChangesManagerTest, AWindowManagerThatEndsLosesNoTuckedWindow) {
    tuck();
    program.session.stopWindowManager();
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(waitUntil([&] { return isReachable(); }))
        << testing::PrintToString(program.seen(window));
}

TEST_P(ProgramChangesManagerTest, AnotherWindowManagerLosesNoTuckedWindow) {
    tuck();
    replaceManager();
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(waitUntil([&] { return isReachable(); }))
        << testing::PrintToString(program.seen(window));
}

TEST_P(ProgramChangesManagerTest, TheShortcutWorksUnderAnotherWindowManager) {
    tuck();
    replaceManager();
    program.probe().activate(window);
    program.waitUntilActive(window);
    EXPECT_TRUE(waitUntil(
        [&] {
            if (isReachable()) return true;
            program.press(program.shortcut);
            return waitUntil([&] { return isReachable(); }, 1s);
        },
        10s));
}

INSTANTIATE_TEST_SUITE_P(, ProgramChangesManagerTest, testing::ValuesIn(allWindowManagers()),
                         testing::PrintToStringParamName());

class ProgramCornerTest : public testing::Test {
protected:
    void start(const ProgramOnX::Binding& placement) {
        ProgramOnX::Binding binding = placement;
        binding.appPath = program.path;
        program.bind({binding});
        input.moveTo(600, 400);
        program.start();
    }
    long firings() const {
        const auto lines = program.logLines();
        return std::count(lines.begin(), lines.end(), "Quorvel: hot corner fired at (0, 800)");
    }

    ProgramWithNotes program;
    XInput& input = program.session.input();
};

TEST_F(ProgramCornerTest, OneVisitOpensAndTheNextPutsAway) {
    start({.appPath = "", .hotKey = "none", .edge = "right", .corner = "topLeft"});
    input.moveTo(0, 0);
    const xcb_window_t window = program.notes.waitForWindow();
    ASSERT_TRUE(program.waitUntilActive(window));
    const Rect home = program.settledFrame(window);
    EXPECT_EQ(firings(), 1);
    input.moveTo(600, 700);
    EXPECT_TRUE(program.staysAt(window, home));
    input.moveTo(0, 0);
    EXPECT_TRUE(program.waitForFrame(window, {1278, home.y, home.width, home.height}));
    EXPECT_TRUE(neverWithin(800ms, [&] { return firings() != 2; }));
}

TEST_F(ProgramCornerTest, AHeldButtonKeepsItFromFiringUntilItIsLetGo) {
    start({.appPath = "", .hotKey = "none", .corner = "topLeft"});
    input.pressButton(1);
    input.moveTo(0, 0);
    EXPECT_TRUE(neverWithin(800ms, [&] { return firings() > 0; }));
    input.releaseButton(1);
    EXPECT_NE(program.notes.waitForWindow(), 0U);
    EXPECT_EQ(firings(), 1);
}

TEST_F(ProgramCornerTest, APassageOfLessThanTheDwellDoesNotFire) {
    start({.appPath = "", .hotKey = "none", .corner = "topLeft"});
    for (int i = 0; i < 10; ++i) {
        input.moveTo(0, 0);
        EXPECT_TRUE(neverWithin(100ms, [&] { return firings() > 0; }));
        input.moveTo(300, 300);
        EXPECT_TRUE(neverWithin(100ms, [&] { return firings() > 0; }));
    }
    EXPECT_TRUE(neverWithin(500ms, [&] { return firings() > 0; }));
}

}  // namespace
}  // namespace quorvel::test
