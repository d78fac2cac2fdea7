#include "platform/linux/PendingLaunches.hpp"

#include <gtest/gtest.h>

#include "platform/simulated/SimulatedRunLoop.hpp"

namespace quorvel::native {
namespace {

using namespace std::chrono_literals;

class PendingLaunchesTest : public testing::Test {
protected:
    void windowAppears(const std::string& path) {
        launches.windowsSeen([&](const std::string& asked) { return asked == path; });
    }

    SimulatedRunLoop loop;
    std::vector<std::string> activated;
    PendingLaunches launches{loop, [this](const std::string& path) { activated.push_back(path); }};
};

TEST_F(PendingLaunchesTest, WindowThatStaysInTheBackgroundIsActivatedOnce) {
    launches.begin("/a", "/front");
    loop.advance(2s);
    EXPECT_TRUE(activated.empty());
    windowAppears("/b");
    loop.advance(1s);
    EXPECT_TRUE(activated.empty());
    windowAppears("/a");
    windowAppears("/a");
    loop.advance(PendingLaunches::becomesActiveWithin - 1ms);
    EXPECT_TRUE(activated.empty());
    loop.advance(1ms);
    EXPECT_EQ(activated, std::vector<std::string>{"/a"});
    EXPECT_TRUE(launches.empty());
    loop.advance(10s);
    EXPECT_EQ(activated.size(), 1U);
}

TEST_F(PendingLaunchesTest, WindowThatBecomesActiveByItselfIsLeftAlone) {
    launches.begin("/a", "/front");
    windowAppears("/a");
    launches.frontChanged("/a");
    loop.advance(10s);
    EXPECT_TRUE(activated.empty());
    EXPECT_TRUE(launches.empty());
}

TEST_F(PendingLaunchesTest, UserWhoTurnedToSomethingElseIsNotInterrupted) {
    launches.begin("/a", "/front");
    launches.frontChanged("/other");
    windowAppears("/a");
    loop.advance(10s);
    EXPECT_TRUE(activated.empty());
}

TEST_F(PendingLaunchesTest, NothingInFrontForAMomentIsNoTurningAway) {
    launches.begin("/a", "/front");
    launches.frontChanged(std::nullopt);
    launches.frontChanged("/front");
    windowAppears("/a");
    loop.advance(10s);
    EXPECT_EQ(activated.size(), 1U);
}

TEST_F(PendingLaunchesTest, WhatComesFirstWhereNothingWasInFrontIsNoTurningAway) {
    launches.begin("/a", std::nullopt);
    launches.frontChanged("/front");
    windowAppears("/a");
    loop.advance(10s);
    EXPECT_EQ(activated.size(), 1U);
    launches.begin("/a", std::nullopt);
    launches.frontChanged("/front");
    launches.frontChanged("/other");
    windowAppears("/a");
    loop.advance(10s);
    EXPECT_EQ(activated.size(), 1U);
}

TEST_F(PendingLaunchesTest, WindowOfLongAgoIsNotActivated) {
    launches.begin("/a", std::nullopt);
    loop.advance(PendingLaunches::forgottenAfter + 1s);
    windowAppears("/a");
    loop.advance(10s);
    EXPECT_TRUE(activated.empty());
}

TEST_F(PendingLaunchesTest, StartingLastsUntilTheWindowOrAWhile) {
    EXPECT_FALSE(launches.isStarting("/a"));
    launches.begin("/a", std::nullopt);
    EXPECT_TRUE(launches.isStarting("/a"));
    EXPECT_FALSE(launches.isStarting("/b"));
    loop.advance(PendingLaunches::startsWithin + 1ms);
    EXPECT_FALSE(launches.isStarting("/a"));
    launches.begin("/a", std::nullopt);
    EXPECT_TRUE(launches.isStarting("/a"));
    windowAppears("/a");
    EXPECT_FALSE(launches.isStarting("/a"));
}

TEST_F(PendingLaunchesTest, FailureEndsIt) {
    launches.begin("/a", std::nullopt);
    launches.failed("/a");
    EXPECT_FALSE(launches.isStarting("/a"));
}

TEST_F(PendingLaunchesTest, OnlyABadEndOfTheProcessEndsIt) {
    launches.begin("/a", std::nullopt);
    launches.started("/a", 42);
    launches.exited(42, 0);
    EXPECT_TRUE(launches.isStarting("/a"));
    launches.exited(41, 256);
    EXPECT_TRUE(launches.isStarting("/a"));
    launches.exited(42, 256);
    EXPECT_FALSE(launches.isStarting("/a"));
}

TEST_F(PendingLaunchesTest, TwoLaunchesAtOnceLetTheFirstWindowStayInFront) {
    launches.begin("/a", "/front");
    launches.begin("/b", "/front");
    launches.frontChanged("/b");
    windowAppears("/a");
    loop.advance(10s);
    EXPECT_TRUE(activated.empty());
}

}  // namespace
}  // namespace quorvel::native
