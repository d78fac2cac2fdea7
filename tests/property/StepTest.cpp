#include "tests/property/Step.hpp"

#include <gtest/gtest.h>

#include "tests/property/StepGenerator.hpp"

namespace quorvel {
namespace {

TEST(StepTest, AScriptReadsBackFromItsText) {
    const Script script = randomScript(3, 3000);
    const auto [read, error] = parseScript("# a remark\n\n" + text(script));
    EXPECT_EQ(error, "");
    EXPECT_EQ(read, script);
}

TEST(StepTest, ATextNamesTheArguments) {
    EXPECT_EQ((Step{Deed::drag, {2, -45, 10}}.text()), "drag window=2 right=-45 down=10");
    EXPECT_EQ(Step{Deed::reload}.text(), "reload");
}

TEST(StepTest, WhatIsNoStepIsRefused) {
    for (const char* line :
         {"", "dance", "wait", "wait milliseconds=", "wait milliseconds=1x", "wait seconds=1",
          "wait milliseconds=1 milliseconds=1", "reload now=1"}) {
        EXPECT_FALSE(Step::parse(line)) << line;
    }
    EXPECT_EQ(parseScript("reload\ndance\n").error, "this is no step: dance");
}

TEST(StepTest, TheSameSeedGivesTheSameScript) {
    EXPECT_EQ(randomScript(11, 200), randomScript(11, 200));
    EXPECT_NE(randomScript(11, 200), randomScript(12, 200));
}

}  // namespace
}  // namespace quorvel
