#include "platform/Subscription.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace quorvel {
namespace {

TEST(SubscriptionTest, EndsOnceWhenItIsDestroyed) {
    int ended = 0;
    {
        const Subscription subscription([&] { ++ended; });
        EXPECT_TRUE(subscription);
        EXPECT_EQ(ended, 0);
    }
    EXPECT_EQ(ended, 1);
}

TEST(SubscriptionTest, ResetEndsItAndASecondOneDoesNothing) {
    int ended = 0;
    Subscription subscription([&] { ++ended; });
    subscription.reset();
    subscription.reset();
    EXPECT_FALSE(subscription);
    EXPECT_EQ(ended, 1);
}

TEST(SubscriptionTest, AnEmptyOneIsNothing) {
    Subscription subscription;
    EXPECT_FALSE(subscription);
    subscription.reset();
}

TEST(SubscriptionTest, MovingHandsTheEndOver) {
    int ended = 0;
    Subscription second;
    {
        Subscription first([&] { ++ended; });
        second = std::move(first);
    }
    EXPECT_EQ(ended, 0);
    second = Subscription();
    EXPECT_EQ(ended, 1);
}

TEST(SubscriptionTest, AssigningEndsWhatWasHeld) {
    std::string ended;
    Subscription subscription([&] { ended += "a"; });
    subscription = Subscription([&] { ended += "b"; });
    EXPECT_EQ(ended, "a");
}

TEST(SubscribersTest, CallsInTheOrderInWhichTheyCame) {
    Subscribers<int> subscribers;
    std::string calls;
    const auto a = subscribers.add([&](int n) { calls += "a" + std::to_string(n); });
    const auto b = subscribers.add([&](int n) { calls += "b" + std::to_string(n); });
    subscribers.notify(1);
    EXPECT_EQ(calls, "a1b1");
}

TEST(SubscribersTest, OneThatEndedIsNotCalled) {
    Subscribers<> subscribers;
    int calls = 0;
    auto subscription = subscribers.add([&] { ++calls; });
    EXPECT_FALSE(subscribers.empty());
    subscription.reset();
    subscribers.notify();
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(subscribers.empty());
}

TEST(SubscribersTest, ACallbackMayEndItsOwnSubscription) {
    Subscribers<> subscribers;
    int calls = 0;
    Subscription subscription;
    // Something that dies with the callback and is used after the end of the subscription.
    const auto text = std::make_shared<std::string>("still here");
    std::string seen;
    subscription = subscribers.add([&, text] {
        ++calls;
        subscription.reset();
        seen = *text;
    });
    subscribers.notify();
    subscribers.notify();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seen, "still here");
}

TEST(SubscribersTest, ACallbackMayEndTheOneAfterIt) {
    Subscribers<> subscribers;
    int calls = 0;
    Subscription second;
    const auto first = subscribers.add([&] { second.reset(); });
    second = subscribers.add([&] { ++calls; });
    subscribers.notify();
    EXPECT_EQ(calls, 0);
}

TEST(SubscribersTest, OneThatComesDuringANotificationWaitsForTheNext) {
    Subscribers<> subscribers;
    int calls = 0;
    std::vector<Subscription> late;
    const auto first = subscribers.add([&] { late.push_back(subscribers.add([&] { ++calls; })); });
    subscribers.notify();
    EXPECT_EQ(calls, 0);
    subscribers.notify();
    EXPECT_EQ(calls, 1);
}

TEST(SubscribersTest, ASubscriptionMayOutliveItsSource) {
    Subscription subscription;
    {
        Subscribers<> subscribers;
        subscription = subscribers.add([] {});
    }
    subscription.reset();
    EXPECT_FALSE(subscription);
}

TEST(LifetimeTest, WatchExpiresWithTheOwner) {
    std::weak_ptr<const void> watch;
    {
        const Lifetime life;
        watch = life.watch();
        EXPECT_FALSE(watch.expired());
    }
    EXPECT_TRUE(watch.expired());
}

}  // namespace
}  // namespace quorvel
