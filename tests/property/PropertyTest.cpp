#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "tests/property/Run.hpp"
#include "tests/property/Shrinker.hpp"
#include "tests/property/StepGenerator.hpp"

namespace quorvel {
namespace {

constexpr std::size_t stepsOfAScript = 120;

std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* const text = std::getenv(name);
    return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

Script shortestLike(const Script& script, const Breach& breach) {
    const Script played(script.begin(), script.begin() + static_cast<std::ptrdiff_t>(std::min(
                                                             breach.steps, script.size())));
    return shrunk(played, [&](const Script& candidate) {
        const auto other = run(candidate);
        return other && other->rule() == breach.rule();
    });
}

TEST(PropertyTest, WhateverHappensNoRuleIsBroken) {
    const std::uint64_t seed = fromEnvironment("QUORVEL_PROPERTY_SEED", 1);
    const std::uint64_t steps = fromEnvironment("QUORVEL_PROPERTY_STEPS", QUORVEL_PROPERTY_STEPS);
    std::cout << "QUORVEL_PROPERTY_SEED=" << seed << " QUORVEL_PROPERTY_STEPS=" << steps
              << std::endl;
    std::uint64_t scriptSeed = seed;
    for (std::uint64_t taken = 0; taken < steps; taken += stepsOfAScript, ++scriptSeed) {
        const Script script = randomScript(scriptSeed, stepsOfAScript);
        const auto breach = run(script);
        if (!breach) continue;
        const Script shortest = shortestLike(script, *breach);
        std::ostringstream narration;
        const auto again = run(shortest, &narration);
        FAIL() << "The script of seed " << scriptSeed
               << " broke a rule: " << (again ? again->what : breach->what)
               << "\n\n# the shortest that does\n"
               << text(shortest) << "\n# what happens\n"
               << narration.str();
    }
}

/// Each of these found a fault once.
TEST(PropertyTest, ScriptsThatOnceFoundAFaultFindNoneAnyMore) {
    int played = 0;
    for (const auto& entry : std::filesystem::directory_iterator(QUORVEL_PROPERTY_SCRIPTS)) {
        std::ifstream file(entry.path());
        std::ostringstream contents;
        contents << file.rdbuf();
        const auto [script, error] = parseScript(contents.str());
        ASSERT_EQ(error, "") << entry.path();
        ASSERT_FALSE(script.empty()) << entry.path();
        const auto breach = run(script);
        EXPECT_FALSE(breach) << entry.path() << " broke a rule: " << breach->what;
        ++played;
    }
    EXPECT_GT(played, 0);
}

}  // namespace
}  // namespace quorvel
