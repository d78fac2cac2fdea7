#include "tests/property/Shrinker.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/property/StepGenerator.hpp"

namespace quorvel {
namespace {

std::size_t count(const Script& script, Deed deed) {
    return static_cast<std::size_t>(std::count_if(
        script.begin(), script.end(), [&](const Step& step) { return step.deed == deed; }));
}

TEST(ShrinkerTest, OnlyWhatMattersIsLeft) {
    const Script script = randomScript(7, 400);
    const auto stillFails = [](const Script& candidate) {
        const auto drag = std::find_if(candidate.begin(), candidate.end(), [](const Step& step) {
            return step.deed == Deed::drag && step.arguments[1] > 40;
        });
        return drag != candidate.end() && count({drag, candidate.end()}, Deed::attach) >= 2;
    };
    ASSERT_TRUE(stillFails(script));
    const Script shortest = shrunk(script, stillFails);
    ASSERT_TRUE(stillFails(shortest));
    ASSERT_EQ(shortest.size(), 3u);
    EXPECT_EQ(shortest[1], (Step{Deed::attach, {}}));
    EXPECT_LT(shortest[0].arguments[1], 100);
}

TEST(ShrinkerTest, WhatAlwaysFailsShrinksToNothing) {
    EXPECT_TRUE(shrunk(randomScript(1, 50), [](const Script&) { return true; }).empty());
}

}  // namespace
}  // namespace quorvel
