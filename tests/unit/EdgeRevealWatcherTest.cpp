#include "main/tucking/EdgeRevealWatcher.hpp"

#include <gmock/gmock.h>

#include "tests/support/Printers.hpp"
#include "tests/support/TuckFixture.hpp"

namespace quorvel {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class EdgeRevealWatcherTest : public TuckFixture {
protected:
    void SetUp() override {
        desktop.pointer.moveTo(away);
        toggle();
        watcher.start();
        desktop.advance(1s);
        taken();
    }

    bool isRevealed() const { return controller->hasRevealedWindow(editor); }
    /// How often the window was brought out: each time it is raised.
    std::size_t revealCount() const { return desktop.windows.raised.size(); }

    void rest(Point cursorCocoa, RunLoop::Duration duration) {
        desktop.pointer.moveTo(cursorCocoa);
        desktop.advance(duration);
    }
    void bringOut() {
        rest(onStrip, 500ms);
        ASSERT_TRUE(isRevealed());
    }

    const Point away{700, 450};
    const Point onStrip{3, 400};
    AXWindow window = desktop.start(editor, home);
    EdgeRevealWatcher watcher{*controller,
                              {desktop.pollTimers, desktop.pointer, desktop.runLoop, desktop.log}};
};

TEST_F(EdgeRevealWatcherTest, TheStartIsLoggedOnceHoweverOftenItIsStarted) {
    EdgeRevealWatcher another{*controller,
                              {desktop.pollTimers, desktop.pointer, desktop.runLoop, desktop.log}};
    another.start();
    another.start();
    EXPECT_THAT(taken(), ElementsAre("Quorvel: edge reveal watcher armed"));
}

TEST_F(EdgeRevealWatcherTest, ARestOf100MillisecondsDoesNotReveal) {
    // Also when it begins with a poll.
    rest(onStrip, 100ms);
    rest(away, 1s);
    EXPECT_EQ(revealCount(), 0u);
}

TEST_F(EdgeRevealWatcherTest, TheThirdPollAfterTheFirstRevealsWhenAllAreOnTime) {
    rest(onStrip, 195ms);
    EXPECT_FALSE(isRevealed());
    rest(onStrip, 10ms);
    EXPECT_TRUE(isRevealed());
}

TEST_F(EdgeRevealWatcherTest, TheSecondOneRevealsWhenItComesAsLateAsItMay) {
    rest(onStrip, 1ms);
    desktop.runLoop.ticksAreLate = true;
    rest(onStrip, 148ms);
    EXPECT_FALSE(isRevealed());
    rest(onStrip, 10ms);
    EXPECT_TRUE(isRevealed());
}

TEST_F(EdgeRevealWatcherTest, FourteenPointsBesideItKeepItAndSixteenDoNot) {
    bringOut();
    const Rect out = frame(window);
    rest({out.maxX() + 14, 400}, 500ms);
    EXPECT_TRUE(isRevealed());
    rest({out.maxX() + 16, 400}, 500ms);
    EXPECT_FALSE(isRevealed());
}

TEST_F(EdgeRevealWatcherTest, ARestRevealsOnceUntilTheCursorLeaves) {
    rest(onStrip, 60s);
    EXPECT_TRUE(isRevealed());
    EXPECT_EQ(frame(window), (Rect{0, 150, 800, 600}));
    EXPECT_EQ(revealCount(), 1u);
    rest({900, 450}, 500ms);
    EXPECT_FALSE(isRevealed());
    EXPECT_EQ(frame(window).x, -798);
    rest(onStrip, 500ms);
    EXPECT_EQ(revealCount(), 2u);
}

TEST_F(EdgeRevealWatcherTest, TheDwellIs150MillisecondsWhateverThePollsSay) {
    // The poll that begins the dwell comes within 67 ms, the third after it is the first that is
    // late enough.
    desktop.pointer.moveTo(onStrip);
    const auto before = desktop.runLoop.uptime();
    while (!isRevealed()) desktop.advance(1ms);
    const auto taken = desktop.runLoop.uptime() - before;
    EXPECT_GE(taken, 150ms);
    EXPECT_LE(taken, 200ms + 67ms);
}

TEST_F(EdgeRevealWatcherTest, AButtonHeldAcrossTheStripNeverReveals) {
    desktop.pointer.press(1);
    rest(onStrip, 10s);
    rest(away, 1s);
    EXPECT_EQ(revealCount(), 0u);
    rest(onStrip, 10s);
    EXPECT_EQ(revealCount(), 0u);
    desktop.pointer.release(1);
    desktop.advance(100ms);
    EXPECT_EQ(revealCount(), 0u);
    desktop.advance(200ms);
    EXPECT_EQ(revealCount(), 1u);
}

TEST_F(EdgeRevealWatcherTest, TheBoundaryOfTheStripCountsAsInside) {
    // The strip is (0, 150) to (6, 750).
    for (const Point cursor : {Point{0, 150}, Point{6, 150}, Point{0, 750}, Point{6, 750}}) {
        rest(cursor, 500ms);
        EXPECT_TRUE(isRevealed()) << cursor.x << ", " << cursor.y;
        rest({900, 450}, 500ms);
    }
    for (const Point cursor :
         {Point{-0.5, 400}, Point{6.5, 400}, Point{3, 149.5}, Point{3, 750.5}}) {
        rest(cursor, 500ms);
        EXPECT_FALSE(isRevealed()) << cursor.x << ", " << cursor.y;
    }
}

TEST_F(EdgeRevealWatcherTest, TenPointsPastARevealedWindowKeepItOutAndTwentyDoNot) {
    bringOut();
    for (const Point cursor :
         {Point{810, 400}, Point{400, 760}, Point{400, 140}, Point{814, 400}}) {
        rest(cursor, 1s);
        EXPECT_TRUE(isRevealed()) << cursor.x << ", " << cursor.y;
    }
    rest({820, 400}, 200ms);
    EXPECT_FALSE(isRevealed());
}

TEST_F(EdgeRevealWatcherTest, AHeldButtonKeepsARevealedWindowOut) {
    bringOut();
    desktop.pointer.press(3);
    rest({1200, 400}, 10s);
    EXPECT_TRUE(isRevealed());
    desktop.pointer.release(3);
    desktop.advance(200ms);
    EXPECT_FALSE(isRevealed());
}

TEST_F(EdgeRevealWatcherTest, AWindowThatIsTuckedByOthersUnderTheCursorStaysSoUntilItLeaves) {
    bringOut();
    controller->hideRevealed(editor);
    desktop.advance(10s);
    EXPECT_FALSE(isRevealed());
    EXPECT_EQ(revealCount(), 1u);
    rest(away, 200ms);
    rest(onStrip, 500ms);
    EXPECT_EQ(revealCount(), 2u);
}

TEST_F(EdgeRevealWatcherTest, EachWindowHasItsOwnDwell) {
    edges[browser] = "right";
    const AXWindow other = desktop.start(browser, home);
    controller->toggleTuck(browser, TuckEdge::right);
    rest({1438, 400}, 100ms);
    rest(onStrip, 140ms);
    EXPECT_FALSE(isRevealed());
    desktop.advance(200ms);
    EXPECT_TRUE(isRevealed());
    EXPECT_FALSE(controller->hasRevealedWindow(browser));
    rest({1438, 400}, 500ms);
    EXPECT_FALSE(isRevealed());
    EXPECT_TRUE(controller->hasRevealedWindow(browser));
    EXPECT_THAT(desktop.windows.raised, ElementsAre(window, other));
}

TEST_F(EdgeRevealWatcherTest, TheStateOfAnUntuckedWindowIsGoneWithTheNextTickThatHasATarget) {
    edges[browser] = "right";
    desktop.start(browser, home);
    controller->toggleTuck(browser, TuckEdge::right);
    bringOut();
    // It has fired. Untucked for a tick and tucked anew, it starts from nothing.
    controller->untuck(window, TuckAnimationStyle::instant, false);
    rest({3, 401}, 200ms);
    desktop.server.activate(window.element);
    toggle();
    desktop.advance(500ms);
    EXPECT_EQ(revealCount(), 2u);
}

TEST_F(EdgeRevealWatcherTest, WithoutATickThatHasATargetTheStateStays) {
    bringOut();
    controller->untuck(window, TuckAnimationStyle::instant, false);
    desktop.advance(1s);
    toggle();
    desktop.advance(5s);
    EXPECT_EQ(revealCount(), 1u);
}

TEST_F(EdgeRevealWatcherTest, AWindowThatIsDraggedAwayOrClosedIsReleasedByTheNextPoll) {
    desktop.server.drag(window.element, {300, 300});
    desktop.advance(100ms);
    EXPECT_THAT(taken(),
                ElementsAre("Quorvel: released a tucked window — moved externally or closed"));
    toggle();
    desktop.advance(100ms);
    taken();
    desktop.server.close(window.element);
    desktop.advance(100ms);
    EXPECT_THAT(taken(),
                ElementsAre("Quorvel: released a tucked window — moved externally or closed"));
}

TEST_F(EdgeRevealWatcherTest, NoDisplayForAMomentNeitherRevealsNorHides) {
    bringOut();
    desktop.pointer.moveTo({1200, 800});
    desktop.screens.arrange({});
    desktop.advance(1s);
    EXPECT_TRUE(isRevealed());
    EXPECT_EQ(frame(window).x, 0);
    desktop.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}, true)});
    desktop.advance(1s);
    EXPECT_FALSE(isRevealed());
    EXPECT_EQ(frame(window).x, -798);
}

TEST_F(EdgeRevealWatcherTest, AWindowThatOvershootsOnItsWayOutIsNotTakenForLeft) {
    controller->animationStyle = TuckAnimationStyle::spring;
    bringOut();
    desktop.advance(1s);
    EXPECT_EQ(frame(window).x, 0);
    rest(away, 100ms);
    rest({1200, 400}, 1s);
    EXPECT_EQ(frame(window).x, -798);
    EXPECT_TRUE(controller->hasTuckedWindow(editor));
    EXPECT_EQ(revealCount(), 1u);
}

TEST_F(EdgeRevealWatcherTest, AClientThatHangsHoldsUpOnePoll) {
    desktop.advance(10s);
    server(window).faults.responseTime = WindowFaults::neverResponds;
    rest(onStrip, 10s);
    EXPECT_FALSE(controller->hasTuckedWindow(editor));
    EXPECT_THAT(taken(),
                ElementsAre("Quorvel: released a tucked window — moved externally or closed"));
}

TEST_F(EdgeRevealWatcherTest, ASlowClientIsRevealedAllTheSame) {
    server(window).faults.responseTime = 200ms;
    rest(onStrip, 3s);
    EXPECT_TRUE(isRevealed());
    EXPECT_EQ(revealCount(), 1u);
}

TEST_F(EdgeRevealWatcherTest, NothingTuckedMeansNoPollsEvenWhileThePointerMoves) {
    controller->untuckAll();
    desktop.advance(10s);
    const int before = desktop.pollTimers.observationCount;
    for (int i = 0; i < 100; ++i) rest({i * 10.0, 300}, 100ms);
    EXPECT_EQ(desktop.pollTimers.observationCount, before);
}

TEST_F(EdgeRevealWatcherTest, AfterARestOfThePollsEverythingWorksAsBefore) {
    desktop.advance(60s);
    const int before = desktop.pollTimers.observationCount;
    desktop.advance(60s);
    EXPECT_LE(desktop.pollTimers.observationCount, before + 12);
    bringOut();
    desktop.advance(60s);
    rest({1200, 400}, 200ms);
    EXPECT_FALSE(isRevealed());
}

TEST_F(EdgeRevealWatcherTest, AWindowThatIsMovedWhileItsDisplayChangesComesHome) {
    desktop.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1280, 800}, true)});
    // As window managers do that keep the place of a window in proportion.
    desktop.server.drag(window.element, {-700, 130});
    desktop.advance(1s);
    EXPECT_THAT(
        taken(),
        ElementsAre("Quorvel: displays changed — restoring 1 tucked window(s) whose display "
                    "is gone or resized",
                    "Quorvel: untucked window"));
    EXPECT_EQ(frame(window).origin(), home.origin());
}

}  // namespace
}  // namespace quorvel
