#include "main/corners/HotZoneState.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace quorvel {
namespace {

constexpr std::uint64_t dwell = 300;
constexpr bool inside = true;
constexpr bool outside = false;

using Phase = HotZoneState::Phase;
using Armed = HotZoneState::Armed;
using Dwelling = HotZoneState::Dwelling;
using Fired = HotZoneState::Fired;

TEST(HotZoneStateTest, FiresOnceWhenTheDwellIsOver) {
    HotZoneState state;
    EXPECT_FALSE(state.step({inside, 0, 1000}, dwell));
    EXPECT_EQ(state.phase, Phase(Dwelling{1000}));
    EXPECT_FALSE(state.step({inside, 0, 1299}, dwell));
    EXPECT_TRUE(state.step({inside, 0, 1300}, dwell));
    EXPECT_EQ(state.phase, Phase(Fired{}));
    EXPECT_FALSE(state.step({inside, 0, 9000}, dwell));
}

TEST(HotZoneStateTest, LeavingForOnePollRearmsAndStartsTheDwellAfresh) {
    HotZoneState state{Fired{}};
    EXPECT_FALSE(state.step({outside, 0, 1000}, dwell));
    EXPECT_EQ(state.phase, Phase(Armed{}));
    EXPECT_FALSE(state.step({inside, 0, 1100}, dwell));
    EXPECT_EQ(state.phase, Phase(Dwelling{1100}));
    EXPECT_FALSE(state.step({outside, 0, 1200}, dwell));
    EXPECT_FALSE(state.step({inside, 0, 1500}, dwell));
    EXPECT_EQ(state.phase, Phase(Dwelling{1500}));
}

TEST(HotZoneStateTest, AButtonStopsTheDwellUntilItIsReleased) {
    HotZoneState state;
    state.step({inside, 0, 1000}, dwell);
    EXPECT_FALSE(state.step({inside, 4, 1400}, dwell));
    EXPECT_EQ(state.phase, Phase(Armed{}));
    EXPECT_FALSE(state.step({inside, 0, 1500}, dwell));
    EXPECT_TRUE(state.step({inside, 0, 1800}, dwell));
}

TEST(HotZoneStateTest, AButtonDoesNotRearmWhatHasFired) {
    HotZoneState state{Fired{}};
    EXPECT_FALSE(state.step({inside, 1, 1000}, dwell));
    EXPECT_EQ(state.phase, Phase(Fired{}));
}

TEST(HotZoneStateTest, WithoutADwellTheFirstPollInsideFires) {
    HotZoneState state;
    EXPECT_FALSE(state.step({inside, 1, 1000}, 0));
    EXPECT_TRUE(state.step({inside, 0, 1000}, 0));
}

TEST(HotZoneStateTest, AClockThatStepsBackNeitherEndsNorRestartsTheDwell) {
    HotZoneState state{Dwelling{1000}};
    EXPECT_FALSE(state.step({inside, 0, 5}, dwell));
    EXPECT_EQ(state.phase, Phase(Dwelling{1000}));
    EXPECT_FALSE(state.step({inside, 0, 1299}, dwell));
    EXPECT_TRUE(state.step({inside, 0, 1300}, dwell));
}

TEST(HotZoneStateTest, AClockThatStepsBackEndsADwellOfNothing) {
    HotZoneState state{Dwelling{1000}};
    EXPECT_TRUE(state.step({inside, 0, 5}, 0));
}

TEST(HotZoneStateTest, TheEndOfTheClockIsNoOverflow) {
    HotZoneState state;
    constexpr std::uint64_t end = std::numeric_limits<std::uint64_t>::max();
    EXPECT_FALSE(state.step({inside, 0, end - 10}, dwell));
    EXPECT_FALSE(state.step({inside, 0, end}, dwell));
    EXPECT_TRUE(state.step({inside, 0, end}, 10));
}

}  // namespace
}  // namespace quorvel
