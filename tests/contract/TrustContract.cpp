#include "tests/contract/Contract.hpp"

namespace quorvel::test {
namespace {

class TrustContract : public Contract {
protected:
    Trust& trust = desktop.trust;
};

TEST_P(TrustContract, TrustedWhileAWindowManagerRuns) {
    EXPECT_TRUE(trust.isTrusted());
    EXPECT_EQ(trust.reason(), "");
    EXPECT_TRUE(trust.isTrustedWithPrompt());
    EXPECT_EQ(rig->trustPrompts(), 0);
}

TEST_P(TrustContract, NotTrustedWithoutOneAndSaysWhy) {
    rig->endWindowManager();
    EXPECT_TRUE(rig->until([&] { return !trust.isTrusted(); }));
    EXPECT_NE(trust.reason(), "");
}

TEST_P(TrustContract, TrustedAgainWhenOneIsBack) {
    rig->endWindowManager();
    ASSERT_TRUE(rig->until([&] { return !trust.isTrusted(); }));
    rig->restartWindowManager();
    EXPECT_TRUE(rig->until([&] { return trust.isTrusted(); }));
    EXPECT_EQ(trust.reason(), "");
}

TEST_P(TrustContract, ReasonIsShownOnceAtATime) {
    rig->endWindowManager();
    ASSERT_TRUE(rig->until([&] { return !trust.isTrusted(); }));
    EXPECT_FALSE(trust.isTrustedWithPrompt());
    EXPECT_FALSE(trust.isTrustedWithPrompt());
    EXPECT_EQ(rig->trustPrompts(), 1);
    rig->closeTrustPrompt();
    EXPECT_FALSE(trust.isTrustedWithPrompt());
    EXPECT_EQ(rig->trustPrompts(), 2);
}

INSTANTIATE_TEST_SUITE_P(, TrustContract, testing::ValuesIn(windowManagerRigs() + simulatedRig()),
                         rigName);

}  // namespace
}  // namespace quorvel::test
