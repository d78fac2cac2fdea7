#include "tests/x11/Behaviours.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <ostream>
#include <tuple>

namespace quorvel::test {

static void PrintTo(const Behaviour& behaviour, std::ostream* out) {
    *out << behaviour.name;
}

namespace {

class BehavioursTest : public testing::TestWithParam<std::tuple<WindowManagerKind, Behaviour>> {};

TEST_P(BehavioursTest, IsWhatTheUserSees) {
    const auto& [kind, behaviour] = GetParam();
    EXPECT_EQ(behaviour.tryOut(kind), "");
}

INSTANTIATE_TEST_SUITE_P(, BehavioursTest,
                         testing::Combine(testing::ValuesIn(allWindowManagers()),
                                          testing::ValuesIn(allBehaviours())),
                         [](const auto& tested) {
                             std::string name = std::get<1>(tested.param).name;
                             std::erase_if(name,
                                           [](unsigned char c) { return std::isalnum(c) == 0; });
                             return nameOf(std::get<0>(tested.param)) + "_" + name;
                         });

}  // namespace
}  // namespace quorvel::test
