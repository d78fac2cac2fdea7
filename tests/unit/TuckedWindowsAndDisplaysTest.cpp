#include <gmock/gmock.h>

#include "tests/support/Printers.hpp"
#include "tests/support/TuckFixture.hpp"

namespace quorvel {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* released = "Quorvel: released a tucked window — moved externally or closed";

class TuckedWindowsAndDisplaysTest : public TuckFixture {
protected:
    static std::string restoring(int count) {
        return "Quorvel: displays changed — restoring " + std::to_string(count) +
               " tucked window(s) whose display is gone or resized";
    }
    static std::string unaffected(int count) {
        return "Quorvel: displays changed — " + std::to_string(count) +
               " tucked window(s) unaffected";
    }

    void arrange(std::vector<Screen> screens) {
        desktop.screens.arrange(std::move(screens));
        desktop.advance(100ms);
    }

    AXWindow tuckEditor() {
        const AXWindow window = desktop.start(editor, home);
        toggle();
        desktop.advance(1s);
        taken();
        return window;
    }

    const Screen first = SimulatedScreens::screen(1, {0, 0, 1440, 900}, true);
    const Screen second = SimulatedScreens::screen(2, {1440, 0, 1280, 800});
};

// Display changes ------------------------------------------------------------------------------

TEST_F(TuckedWindowsAndDisplaysTest, AnotherResolutionPutsItsWindowBackAndLeavesTheOthers) {
    arrange({first, second});
    const AXWindow mine = tuckEditor();
    edges[browser] = "right";
    const AXWindow other = desktop.start(browser, {1500, 200, 500, 400});
    controller->toggleTuck(browser, TuckEdge::right);
    ASSERT_EQ(frame(other).x, 1440 + 1280 - 2);
    taken();
    controller->animationStyle = TuckAnimationStyle::spring;
    arrange({SimulatedScreens::screen(1, {0, 0, 1440, 800}, true), second});
    EXPECT_THAT(taken(), ElementsAre(restoring(1), "Quorvel: untucked window"));
    EXPECT_EQ(frame(mine).origin(), home.origin());
    EXPECT_FALSE(controller->hasTuckedWindow(editor));
    EXPECT_TRUE(controller->hasTuckedWindow(browser));
    EXPECT_EQ(frame(other).x, 1440 + 1280 - 2);
    EXPECT_THAT(desktop.windows.raised, IsEmpty());
}

TEST_F(TuckedWindowsAndDisplaysTest, AChangeWithoutTuckedWindowsIsLoggedWithACountOf0) {
    arrange({first, second});
    EXPECT_THAT(taken(), ElementsAre(unaffected(0)));
}

TEST_F(TuckedWindowsAndDisplaysTest, ADisplayThatComesLeavesTuckedWindowsAsTheyAre) {
    const AXWindow window = tuckEditor();
    arrange({first, second});
    EXPECT_THAT(taken(), ElementsAre(unaffected(1)));
    EXPECT_EQ(frame(window).x, -798);
}

TEST_F(TuckedWindowsAndDisplaysTest, ADisplayThatOnlyMovedCountsAsGone) {
    arrange({first, second});
    edges[browser] = "right";
    const AXWindow window = desktop.start(browser, {1500, 200, 500, 400});
    controller->toggleTuck(browser, TuckEdge::right);
    taken();
    arrange({first, SimulatedScreens::screen(2, {1440, 1, 1280, 800})});
    EXPECT_THAT(taken(), ElementsAre(restoring(1), "Quorvel: untucked window"));
    EXPECT_EQ(frame(window).origin(), (Point{1500, 200}));
}

TEST_F(TuckedWindowsAndDisplaysTest, AWindowOfADisplayThatWasUnpluggedComesOntoAnotherOne) {
    arrange({first, second});
    edges[browser] = "right";
    const AXWindow window = desktop.start(browser, {1500, 200, 500, 400});
    controller->toggleTuck(browser, TuckEdge::right);
    arrange({first});
    EXPECT_EQ(frame(window), (Rect{940, 200, 500, 400}));
    EXPECT_FALSE(desktop.windows.isHeld(window));
}

TEST_F(TuckedWindowsAndDisplaysTest, AnEqualDisplayThatTakesThePlaceOfTheOneThatWentKeepsNothing) {
    const Screen twin = SimulatedScreens::screen(2, {1440, 0, 1440, 900});
    arrange({first, twin});
    const AXWindow window = tuckEditor();
    // All places are counted from the twin now, which lies where the first one lay.
    desktop.screens.arrange({SimulatedScreens::screen(2, first.frameCocoa)});
    desktop.server.drag(window.element, {-798 - 1440, 150});
    desktop.advance(100ms);
    EXPECT_THAT(taken(), ElementsAre(restoring(1), "Quorvel: untucked window"));
    EXPECT_EQ(frame(window).origin(), home.origin());
}

TEST_F(TuckedWindowsAndDisplaysTest, AWindowOfADisplayThatWasThereForAMomentIsPutBack) {
    desktop.screens.arrange({second, first});
    const AXWindow window = desktop.start(editor, {1500, 200, 500, 400});
    edges[editor] = "right";
    controller->toggleTuck(editor, TuckEdge::right);
    desktop.screens.arrange({first});
    desktop.advance(1s);
    EXPECT_FALSE(controller->hasTuckedWindow(editor));
    EXPECT_TRUE(first.frameCocoa.intersects(flipped(frame(window), 900)))
        << frame(window).x << ", " << frame(window).y;
}

TEST_F(TuckedWindowsAndDisplaysTest, ARevealedWindowAndOneHalfwayArePutBackAtOnceToo) {
    const AXWindow revealed = tuckEditor();
    controller->reveal(revealed);
    edges[browser] = "right";
    const AXWindow halfway = desktop.start(browser, home);
    controller->animationStyle = TuckAnimationStyle::slide;
    controller->toggleTuck(browser, TuckEdge::right);
    desktop.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 800})});
    desktop.advance(100ms);
    EXPECT_EQ(frame(revealed).origin(), home.origin());
    EXPECT_EQ(frame(halfway).origin(), home.origin());
    EXPECT_EQ(desktop.runLoop.timerCount(), 0u);
}

TEST_F(TuckedWindowsAndDisplaysTest, HiddenApplicationsAreNotTouchedByADisplayChange) {
    desktop.start(editor);
    toggle(TuckEdge::bottom);
    arrange({SimulatedScreens::screen(1, {0, 0, 1920, 1080})});
    EXPECT_TRUE(isHidden(editor));
}

TEST_F(TuckedWindowsAndDisplaysTest, NoDisplayForAMomentLeavesEverythingAsItIs) {
    const AXWindow window = tuckEditor();
    controller->reveal(window);
    const Rect before = frame(window);
    arrange({});
    EXPECT_THAT(controller->revealTargets(), IsEmpty());
    EXPECT_THAT(taken(), IsEmpty());
    arrange({first});
    EXPECT_THAT(taken(), ElementsAre(unaffected(1)));
    EXPECT_THAT(controller->revealTargets(), SizeIs(1));
    EXPECT_EQ(frame(window), before);
}

TEST_F(TuckedWindowsAndDisplaysTest, AfterNoDisplayAnotherOnePutsTheWindowBack) {
    const AXWindow window = tuckEditor();
    arrange({});
    arrange({second});
    EXPECT_THAT(taken(), ElementsAre(restoring(1), "Quorvel: untucked window"));
    EXPECT_FALSE(controller->hasTuckedWindow(editor));
    EXPECT_TRUE(frame(window).intersects({1440, 0, 1280, 800}));
}

TEST_F(TuckedWindowsAndDisplaysTest, AWindowThatIsGoneWhenItsDisplayGoesIsDroppedAllTheSame) {
    const AXWindow window = tuckEditor();
    desktop.server.close(window.element);
    arrange({second});
    EXPECT_THAT(controller->tuckedWindows(), IsEmpty());
}

TEST_F(TuckedWindowsAndDisplaysTest, ADisplayWithoutAnyAreaIsNoDisplay) {
    arrange({SimulatedScreens::screen(3, {0, 0, 0, 0}),
             SimulatedScreens::screen(4, {500, 600, 0, 0}), first});
    const AXWindow window = tuckEditor();
    EXPECT_EQ(askedFor, (std::vector<Rect>{{0, 0, 1440, 900}}));
    EXPECT_EQ(frame(window).origin(), (Point{-798, 150}));
    arrange({SimulatedScreens::screen(3, {0, 0, 0, 0})});
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(TuckedWindowsAndDisplaysTest, OnOverlappingDisplaysAWindowBelongsToTheFirst) {
    arrange({first, SimulatedScreens::screen(2, {0, 132, 1024, 768})});
    const AXWindow window = tuckEditor();
    EXPECT_EQ(askedFor, (std::vector<Rect>{{0, 0, 1440, 900}}));
    EXPECT_EQ(frame(window).origin(), (Point{-798, 150}));
    EXPECT_THAT(controller->revealTargets(), SizeIs(1));
}

TEST_F(TuckedWindowsAndDisplaysTest, AControllerThatIsGoneHearsOfNoChange) {
    controller.reset();
    arrange({second});
    EXPECT_THAT(taken(), IsEmpty());
}

// Reveal targets -------------------------------------------------------------------------------

TEST_F(TuckedWindowsAndDisplaysTest, ATargetHasTheStripAndTheFrameOfItsWindow) {
    const AXWindow window = tuckEditor();
    EXPECT_THAT(controller->revealTargets(),
                ElementsAre(TuckController::RevealTarget{
                    window, {0, 150, 6, 600}, false, {-798, 150, 800, 600}}));
    controller->reveal(window);
    EXPECT_THAT(controller->revealTargets(),
                ElementsAre(TuckController::RevealTarget{
                    window, {0, 150, 800, 600}, true, {0, 150, 800, 600}}));
}

TEST_F(TuckedWindowsAndDisplaysTest, TargetsComeInTheOrderInWhichTheyWereTucked) {
    const AXWindow one = tuckEditor();
    const AXWindow two = tuckEditor();
    const AXWindow three = tuckEditor();
    desktop.server.close(two.element);
    const auto targets = controller->revealTargets();
    ASSERT_THAT(targets, SizeIs(2));
    EXPECT_EQ(targets[0].window, one);
    EXPECT_EQ(targets[1].window, three);
}

TEST_F(TuckedWindowsAndDisplaysTest, AWindowLargerThanItsDisplayHasItsStripOnIt) {
    edges[editor] = "top-left";
    const AXWindow window = desktop.start(editor, {-100, -50, 3000, 2000});
    toggle();
    EXPECT_EQ(frame(window).origin(), (Point{-2998, 0}));
    const auto targets = controller->revealTargets();
    ASSERT_THAT(targets, SizeIs(1));
    EXPECT_EQ(targets[0].stripCocoa, (Rect{0, 450, 6, 450}));
    controller->reveal(window);
    EXPECT_EQ(frame(window).origin(), (Point{0, 0}));
    toggle();
    EXPECT_EQ(frame(window), (Rect{-100, -50, 3000, 2000}));
}

TEST_F(TuckedWindowsAndDisplaysTest, ADriftOf39PointsKeepsTheWindowAndADragOf41ReleasesIt) {
    const AXWindow window = tuckEditor();
    for (const Point drift : {Point{39, 0}, Point{-39, 39}, Point{40, -40}, Point{0, 0}}) {
        desktop.server.drag(window.element, {-798 + drift.x, 150 + drift.y});
        EXPECT_THAT(controller->revealTargets(), SizeIs(1)) << drift.x << ", " << drift.y;
    }
    EXPECT_THAT(taken(), IsEmpty());
    desktop.server.drag(window.element, {-757, 150});
    EXPECT_THAT(controller->revealTargets(), IsEmpty());
    EXPECT_THAT(taken(), ElementsAre(released));
    EXPECT_FALSE(controller->hasTuckedWindow(editor));
    EXPECT_EQ(frame(window).origin(), (Point{-757, 150}));
    EXPECT_THAT(desktop.windows.letGone, ElementsAre(testing::Pair(window, EndOfHold::forgotten)));
    EXPECT_FALSE(desktop.windows.isHeld(window));
}

TEST_F(TuckedWindowsAndDisplaysTest, ADragOf41PointsUpOrDownReleasesTheWindowToo) {
    for (const double moved : {-41.0, 41.0}) {
        const AXWindow window = tuckEditor();
        desktop.server.drag(window.element, {-798, 150 + moved});
        EXPECT_THAT(controller->revealTargets(), IsEmpty()) << moved;
        EXPECT_THAT(taken(), ElementsAre(released));
    }
}

TEST_F(TuckedWindowsAndDisplaysTest, AReleasedWindowCanBeTuckedAgain) {
    const AXWindow window = tuckEditor();
    desktop.server.drag(window.element, {300, 300});
    controller->revealTargets();
    taken();
    toggle();
    EXPECT_THAT(taken(), ElementsAre("Quorvel: tucked " + editor + " window to left"));
    toggle();
    EXPECT_EQ(frame(window).origin(), (Point{300, 300}));
}

TEST_F(TuckedWindowsAndDisplaysTest, ARevealedWindowThatIsDraggedAwayIsReleased) {
    const AXWindow window = tuckEditor();
    controller->reveal(window);
    desktop.server.drag(window.element, {41, 150});
    EXPECT_THAT(controller->revealTargets(), IsEmpty());
    EXPECT_FALSE(controller->hasRevealedWindow(editor));
}

TEST_F(TuckedWindowsAndDisplaysTest, AClosedWindowIsReleasedWithOneLine) {
    const AXWindow window = tuckEditor();
    desktop.server.close(window.element);
    EXPECT_THAT(controller->revealTargets(), IsEmpty());
    EXPECT_THAT(controller->revealTargets(), IsEmpty());
    EXPECT_THAT(taken(), ElementsAre(released));
}

TEST_F(TuckedWindowsAndDisplaysTest, AWindowThatClosesHalfwayIsReleasedAndItsSlideEnds) {
    const AXWindow window = desktop.start(editor, home);
    controller->animationStyle = TuckAnimationStyle::slide;
    toggle();
    desktop.advance(80ms);
    taken();
    desktop.server.close(window.element);
    EXPECT_THAT(controller->revealTargets(), IsEmpty());
    EXPECT_FALSE(controller->isMovingAnyWindow());
    desktop.advance(1s);
    EXPECT_THAT(taken(), ElementsAre(released));
}

TEST_F(TuckedWindowsAndDisplaysTest, OurOwnSlidesAreNeverTakenForMovesByOthers) {
    const AXWindow window = desktop.start(editor, home);
    controller->animationStyle = TuckAnimationStyle::spring;
    const auto pollUntilArrived = [&] {
        ASSERT_TRUE(controller->isMovingAnyWindow());
        for (int poll = 0; poll < 60; ++poll) {
            desktop.advance(7ms);
            ASSERT_THAT(controller->revealTargets(), SizeIs(1));
        }
        ASSERT_FALSE(controller->isMovingAnyWindow());
    };
    toggle();
    pollUntilArrived();
    controller->reveal(window);
    pollUntilArrived();
    controller->hide(window);
    pollUntilArrived();
}

TEST_F(TuckedWindowsAndDisplaysTest, AWindowThatWasClampedIsMeasuredFromWhereItLanded) {
    const AXWindow window = desktop.start(editor, home);
    server(window).faults.isClampedToDisplay = true;
    toggle();
    ASSERT_EQ(frame(window).x, 0);
    EXPECT_THAT(controller->revealTargets(), SizeIs(1));
}

TEST_F(TuckedWindowsAndDisplaysTest, AWindowWhoseMoveWasRefusedIsNotTakenForMoved) {
    const AXWindow window = desktop.start(editor, home);
    server(window).faults.ignoresMoves = true;
    toggle();
    desktop.server.drag(window.element, {600, 300});
    EXPECT_THAT(controller->revealTargets(), SizeIs(1));
}

TEST_F(TuckedWindowsAndDisplaysTest, AClientThatHangsIsLetGoAfterOneTimeout) {
    const AXWindow window = tuckEditor();
    server(window).faults.responseTime = WindowFaults::neverResponds;
    const auto before = desktop.runLoop.uptime();
    EXPECT_THAT(controller->revealTargets(), IsEmpty());
    EXPECT_EQ(desktop.runLoop.uptime() - before, SimulatedWindows::timeout);
    EXPECT_THAT(taken(), ElementsAre(released));
    // From then on it costs nothing.
    controller->revealTargets();
    EXPECT_EQ(desktop.runLoop.uptime() - before, SimulatedWindows::timeout);
}

// The end --------------------------------------------------------------------------------------

TEST_F(TuckedWindowsAndDisplaysTest, AHiddenApplicationThatIsKnownByAnotherPathIsShownAtTheEnd) {
    const std::string alias = "/home/user/my-editor.desktop";
    desktop.start(editor);
    desktop.applications.addAlias(editor, alias);
    desktop.applications.prefer({alias});
    controller->toggleTuck(alias, TuckEdge::bottom);
    ASSERT_TRUE(isHidden(alias));
    // Its binding is removed.
    desktop.applications.prefer({});
    controller->untuckAll();
    EXPECT_FALSE(isHidden(editor));
}

}  // namespace
}  // namespace quorvel
