#include "main/corners/HotZoneWatcher.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/simulated/SimulatedDesktop.hpp"

namespace quorvel {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

using Assignments = std::vector<HotZoneWatcher::Assignment>;

class HotZoneWatcherTest : public testing::Test {
protected:
    std::unique_ptr<HotZoneWatcher> create(Assignments assignments, int dwellMs) {
        return HotZoneWatcher::create(
            std::move(assignments), dwellMs,
            {sim.pollTimers, sim.pointer, sim.screens, sim.runLoop, sim.log});
    }

    void start(Assignments assignments, int dwellMs = 300) {
        watcher = create(std::move(assignments), dwellMs);
        watcher->start();
    }

    /// A corner of every display, or of these, that notes its name when it fires.
    HotZoneWatcher::Assignment corner(HotZoneCorner where, std::string name = "fired",
                                      std::optional<std::vector<Rect>> frames = std::nullopt) {
        return {where, std::move(frames), [this, name] { fired.push_back(name); }};
    }

    void arrange(std::vector<Screen> screens) {
        sim.screens.arrange(std::move(screens));
        sim.advance(100ms);
    }

    /// The displays change without any display being named in what follows.
    void changeDisplays() { arrange({SimulatedScreens::screen(1, {0, 0, 1440, 901})}); }

    const Rect display{0, 0, 1440, 900};
    SimulatedDesktop sim;
    std::vector<std::string> fired;
    std::unique_ptr<HotZoneWatcher> watcher;
};

// Construction ---------------------------------------------------------------------------------

TEST_F(HotZoneWatcherTest, WithoutAssignmentsThereIsNoWatcher) {
    EXPECT_EQ(create({}, 300), nullptr);
}

TEST_F(HotZoneWatcherTest, ANegativeDwellIsNone) {
    start({corner(HotZoneCorner::topLeft)}, -10);
    EXPECT_EQ(sim.log.lines.back(), "Quorvel: hot corner armed (topLeft, dwell 0ms)");
    sim.pointer.moveTo({0, 900});
    sim.advance(67ms);
    EXPECT_THAT(fired, ElementsAre("fired"));
}

TEST_F(HotZoneWatcherTest, TheLongestDwellDoesNotOverflow) {
    start({corner(HotZoneCorner::topLeft)}, std::numeric_limits<int>::max());
    sim.pointer.moveTo({0, 900});
    sim.advance(10s);
    EXPECT_THAT(fired, IsEmpty());
}

TEST_F(HotZoneWatcherTest, NothingIsWatchedBeforeTheStart) {
    watcher = create({corner(HotZoneCorner::topLeft)}, 0);
    sim.pointer.moveTo({0, 900});
    sim.advance(1s);
    EXPECT_THAT(fired, IsEmpty());
    EXPECT_THAT(sim.log.lines, IsEmpty());
}

// Zones ----------------------------------------------------------------------------------------

TEST_F(HotZoneWatcherTest, TheStartNamesTheZonesThenTheCorners) {
    start({corner(HotZoneCorner::topLeft), corner(HotZoneCorner::bottomRight)});
    EXPECT_THAT(sim.log.lines,
                ElementsAre("Quorvel: hot corner zones: (0,894 6x6) (1434,0 6x6)",
                            "Quorvel: hot corner armed (topLeft, bottomRight, dwell 300ms)"));
}

TEST_F(HotZoneWatcherTest, WithoutFramesEveryDisplayGetsItsOwnZone) {
    arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}),
             SimulatedScreens::screen(2, {1440, -100, 1920, 1080})});
    start({corner(HotZoneCorner::bottomLeft)});
    EXPECT_EQ(sim.log.lines.front(), "Quorvel: hot corner zones: (0,0 6x6) (1440,-100 6x6)");
    sim.pointer.moveTo({1443, -97});
    sim.advance(1s);
    EXPECT_THAT(fired, ElementsAre("fired"));
}

TEST_F(HotZoneWatcherTest, EachCornerHasItsZoneInsideTheDisplay) {
    start({corner(HotZoneCorner::bottomLeft), corner(HotZoneCorner::bottomRight),
           corner(HotZoneCorner::topLeft), corner(HotZoneCorner::topRight)});
    EXPECT_EQ(sim.log.lines.front(),
              "Quorvel: hot corner zones: (0,0 6x6) (1434,0 6x6) (0,894 6x6) (1434,894 6x6)");
}

TEST_F(HotZoneWatcherTest, ZonesAreLoggedWithoutTheFractionsOfTheirPlaces) {
    start({corner(HotZoneCorner::bottomLeft, "", std::vector<Rect>{{-0.75, -10.5, 100, 100}})});
    EXPECT_EQ(sim.log.lines.front(), "Quorvel: hot corner zones: (0,-10 6x6)");
}

TEST_F(HotZoneWatcherTest, AllBoundsOfAZoneBelongToIt) {
    start({corner(HotZoneCorner::topRight)}, 0);
    // One past the last pixel column, and the topmost row.
    for (const Point cursor : {Point{1440, 900}, Point{1434, 894}, Point{1440, 894}}) {
        fired.clear();
        sim.pointer.moveTo({700, 400});
        sim.advance(100ms);
        sim.pointer.moveTo(cursor);
        sim.advance(100ms);
        EXPECT_EQ(fired.size(), 1u) << cursor.x << ", " << cursor.y;
    }
    fired.clear();
    for (const Point cursor : {Point{1433.9, 897}, Point{1437, 893.9}, Point{1440.1, 897}}) {
        sim.pointer.moveTo(cursor);
        sim.advance(100ms);
        EXPECT_THAT(fired, IsEmpty()) << cursor.x << ", " << cursor.y;
    }
}

TEST_F(HotZoneWatcherTest, WithoutDisplaysTheZonesAreNone) {
    arrange({});
    start({corner(HotZoneCorner::topLeft)}, 0);
    EXPECT_EQ(sim.log.lines.front(), "Quorvel: hot corner zones: none");
    sim.pointer.moveTo({0, 0});
    sim.advance(1s);
    EXPECT_THAT(fired, IsEmpty());
}

TEST_F(HotZoneWatcherTest, DisplaysThatReturnGetTheirZonesBack) {
    start({corner(HotZoneCorner::topLeft)});
    sim.log.lines.clear();
    arrange({});
    arrange({SimulatedScreens::screen(1, display)});
    EXPECT_THAT(sim.log.lines, ElementsAre("Quorvel: hot corner zones: none",
                                           "Quorvel: hot corner zones: (0,894 6x6)"));
    sim.pointer.moveTo({0, 900});
    sim.advance(1s);
    EXPECT_THAT(fired, ElementsAre("fired"));
}

TEST_F(HotZoneWatcherTest, ADisplayWithoutAnyAreaHasNoZone) {
    arrange({SimulatedScreens::screen(1, display), SimulatedScreens::screen(2, {700, 400, 0, 0})});
    start({corner(HotZoneCorner::bottomLeft)}, 0);
    EXPECT_EQ(sim.log.lines.front(), "Quorvel: hot corner zones: (0,0 6x6)");
    sim.pointer.moveTo({702, 402});
    sim.advance(1s);
    EXPECT_THAT(fired, IsEmpty());
}

TEST_F(HotZoneWatcherTest, OfOverlappingZonesTheFirstFires) {
    start({corner(HotZoneCorner::topLeft, "first"), corner(HotZoneCorner::topLeft, "second")});
    sim.pointer.moveTo({2, 897});
    sim.advance(5s);
    EXPECT_THAT(fired, ElementsAre("first"));
}

TEST_F(HotZoneWatcherTest, OverlappingDisplaysFireOnceAVisit) {
    arrange({SimulatedScreens::screen(1, display), SimulatedScreens::screen(2, {0, 0, 1024, 768})});
    start({corner(HotZoneCorner::bottomLeft)});
    sim.pointer.moveTo({1, 1});
    sim.advance(5s);
    EXPECT_THAT(fired, ElementsAre("fired"));
}

// Dwelling -------------------------------------------------------------------------------------

TEST_F(HotZoneWatcherTest, FiresOnTheFifthTickAfterTheOneThatBeganTheDwell) {
    start({corner(HotZoneCorner::topLeft)});
    sim.log.lines.clear();
    sim.pointer.moveTo({3.9, 898.9});
    // 67 ms until the dwell begins, then 333 ms.
    sim.advance(399ms);
    EXPECT_THAT(fired, IsEmpty());
    sim.advance(1ms);
    EXPECT_THAT(fired, ElementsAre("fired"));
    EXPECT_THAT(sim.log.lines, ElementsAre("Quorvel: hot corner fired at (3, 898)"));
}

TEST_F(HotZoneWatcherTest, AHeldButtonNeverFiresAndItsReleaseStartsAFreshDwell) {
    start({corner(HotZoneCorner::topLeft)});
    sim.pointer.moveTo({0, 900});
    sim.advance(250ms);
    sim.pointer.press(1);
    sim.advance(10s);
    EXPECT_THAT(fired, IsEmpty());
    sim.pointer.release(1);
    sim.advance(290ms);
    EXPECT_THAT(fired, IsEmpty());
    sim.advance(200ms);
    EXPECT_THAT(fired, ElementsAre("fired"));
}

TEST_F(HotZoneWatcherTest, RestingOnDoesNotFireAgainButReturningDoes) {
    start({corner(HotZoneCorner::topLeft)});
    sim.pointer.moveTo({0, 900});
    sim.advance(60s);
    EXPECT_EQ(fired.size(), 1u);
    sim.pointer.moveTo({50, 850});
    sim.advance(80ms);
    sim.pointer.moveTo({0, 900});
    sim.advance(300ms);
    EXPECT_EQ(fired.size(), 1u);
    sim.advance(200ms);
    EXPECT_EQ(fired.size(), 2u);
}

TEST_F(HotZoneWatcherTest, TheDwellGoesOnFromOneZoneIntoTheNextAndSoDoesTheSilence) {
    arrange(
        {SimulatedScreens::screen(1, display), SimulatedScreens::screen(2, {1440, 0, 1440, 900})});
    start({corner(HotZoneCorner::topRight, "left one", std::vector{display}),
           corner(HotZoneCorner::topLeft, "right one", std::vector<Rect>{{1440, 0, 1440, 900}})});
    sim.pointer.moveTo({1436, 898});
    sim.advance(250ms);
    sim.pointer.moveTo({1443, 898});
    sim.advance(200ms);
    EXPECT_THAT(fired, ElementsAre("right one"));
    sim.pointer.moveTo({1436, 898});
    sim.advance(5s);
    EXPECT_THAT(fired, ElementsAre("right one"));
}

TEST_F(HotZoneWatcherTest, ADisplayChangeDuringADwellRestartsIt) {
    start({corner(HotZoneCorner::bottomLeft)});
    sim.pointer.moveTo({0, 0});
    sim.advance(200ms);
    changeDisplays();
    sim.advance(290ms);
    EXPECT_THAT(fired, IsEmpty());
    sim.advance(200ms);
    EXPECT_THAT(fired, ElementsAre("fired"));
}

TEST_F(HotZoneWatcherTest, ADisplayChangeDoesNotRearmWhatHasFired) {
    start({corner(HotZoneCorner::bottomLeft)});
    sim.pointer.moveTo({0, 0});
    sim.advance(1s);
    changeDisplays();
    sim.advance(10s);
    EXPECT_THAT(fired, ElementsAre("fired"));
}

TEST_F(HotZoneWatcherTest, LateTicksAndALoopThatWasBusyOnlyDelayTheAction) {
    sim.runLoop.ticksAreLate = true;
    start({corner(HotZoneCorner::topLeft)});
    sim.pointer.moveTo({0, 900});
    sim.advance(100ms);
    sim.runLoop.async([this] { sim.runLoop.consume(10s); });
    sim.advance(11s);
    EXPECT_THAT(fired, ElementsAre("fired"));
}

TEST_F(HotZoneWatcherTest, NothingIsPolledWhileThePointerRestsElsewhere) {
    start({corner(HotZoneCorner::topLeft)});
    sim.pointer.moveTo({700, 400});
    sim.advance(10s);
    const int before = sim.pollTimers.observationCount;
    sim.advance(60s);
    // Only what looks for a pointer that was set by a program.
    EXPECT_LE(sim.pollTimers.observationCount, before + 12);
    sim.pointer.moveTo({0, 900});
    sim.advance(500ms);
    EXPECT_THAT(fired, ElementsAre("fired"));
}

// The end --------------------------------------------------------------------------------------

TEST_F(HotZoneWatcherTest, AfterTheStopNothingFiresAndNothingIsLogged) {
    start({corner(HotZoneCorner::topLeft)});
    sim.pointer.moveTo({0, 900});
    sim.advance(200ms);
    watcher->stop();
    watcher->stop();
    sim.log.lines.clear();
    changeDisplays();
    sim.advance(10s);
    EXPECT_THAT(fired, IsEmpty());
    EXPECT_THAT(sim.log.lines, IsEmpty());
    EXPECT_EQ(sim.runLoop.timerCount(), 0u);
}

TEST_F(HotZoneWatcherTest, AnActionMayStopItsWatcher) {
    start({{HotZoneCorner::topLeft, std::nullopt,
            [this] {
                watcher->stop();
                fired.push_back("stopped");
            }}},
          0);
    sim.pointer.moveTo({0, 900});
    sim.advance(1s);
    sim.pointer.moveTo({50, 50});
    sim.advance(1s);
    sim.pointer.moveTo({0, 900});
    sim.advance(1s);
    EXPECT_THAT(fired, ElementsAre("stopped"));
}

TEST_F(HotZoneWatcherTest, AnActionMayBeTheEndOfItsWatcher) {
    // More text than fits into the function itself, so that a sanitizer sees it go.
    const std::string note = "what the action holds must outlive the watcher that it ends";
    start({{HotZoneCorner::topLeft, std::nullopt,
            [this, note] {
                watcher.reset();
                fired.push_back(note);
            }}},
          0);
    sim.pointer.moveTo({0, 900});
    sim.advance(1s);
    EXPECT_THAT(fired, ElementsAre(note));
}

}  // namespace
}  // namespace quorvel
