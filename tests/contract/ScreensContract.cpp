#include <algorithm>
#include <set>

#include "tests/contract/Contract.hpp"

namespace quorvel::test {
namespace {

class ScreensContract : public Contract {
protected:
    std::vector<Rect> framesCocoa() {
        std::vector<Rect> frames;
        for (const Screen& screen : desktop.screens.screens()) frames.push_back(screen.frameCocoa);
        return frames;
    }
    std::vector<Screen> screens() { return desktop.screens.screens(); }
    bool arrives(std::vector<Rect> frames) {
        return rig->until([&] { return framesCocoa() == frames; });
    }
};

TEST_P(ScreensContract, OneDisplayHasItsOriginAtTheLowerLeft) {
    ASSERT_EQ(framesCocoa(), (std::vector<Rect>{{0, 0, 1280, 800}}));
    const Screen screen = screens()[0];
    EXPECT_TRUE(screen.number.has_value());
    EXPECT_FALSE(screen.localizedName.empty());
    EXPECT_FALSE(screen.isBuiltin);
}

TEST_P(ScreensContract, IdentifierIsAnUpperCaseUuid) {
    const std::string uuid = screens().at(0).uuid.value_or("");
    ASSERT_EQ(uuid.size(), 36U);
    for (std::size_t i = 0; i < uuid.size(); ++i) {
        const bool isDash = i == 8 || i == 13 || i == 18 || i == 23;
        const std::string allowed = isDash ? "-" : "0123456789ABCDEF";
        EXPECT_NE(allowed.find(uuid[i]), std::string::npos) << uuid << " at " << i;
    }
}

TEST_P(ScreensContract, DisplayFurtherDownHasANegativeCocoaY) {
    rig->arrange({{0, 0, 1280, 800}, {0, 800, 1280, 800}});
    EXPECT_TRUE(arrives({{0, 0, 1280, 800}, {0, -800, 1280, 800}}));
}

TEST_P(ScreensContract, TallerDisplayBesideThePrimaryReachesBelowIt) {
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1920, 1080}});
    EXPECT_TRUE(arrives({{0, 0, 1280, 800}, {1280, -280, 1920, 1080}}));
}

TEST_P(ScreensContract, ThreeDisplaysHaveThreeIdentifiersAndNumbers) {
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1280, 800}, {2560, 0, 1280, 800}});
    ASSERT_TRUE(arrives({{0, 0, 1280, 800}, {1280, 0, 1280, 800}, {2560, 0, 1280, 800}}));
    std::set<std::string> uuids;
    std::set<std::uint32_t> numbers;
    for (const Screen& screen : screens()) {
        uuids.insert(screen.uuid.value_or(""));
        numbers.insert(screen.number.value_or(0));
    }
    EXPECT_EQ(uuids.size(), 3U);
    EXPECT_EQ(numbers.size(), 3U);
}

TEST_P(ScreensContract, IdentifierOutlivesUnpluggingAndMoving) {
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1280, 800}});
    ASSERT_TRUE(arrives({{0, 0, 1280, 800}, {1280, 0, 1280, 800}}));
    const auto first = screens()[0].uuid;
    const auto second = screens()[1].uuid;
    rig->arrange({{0, 0, 1280, 800}, {}});
    ASSERT_TRUE(arrives({{0, 0, 1280, 800}}));
    EXPECT_EQ(screens()[0].uuid, first);
    rig->arrange({{0, 0, 1280, 800}, {0, 800, 1280, 800}});
    ASSERT_TRUE(arrives({{0, 0, 1280, 800}, {0, -800, 1280, 800}}));
    EXPECT_EQ(screens()[0].uuid, first);
    EXPECT_EQ(screens()[1].uuid, second);
}

TEST_P(ScreensContract, PluggingIsReportedOnceWhenItHasSettled) {
    int reports = 0;
    std::vector<Rect> whenReported;
    const Subscription changes = desktop.screens.onChange([&] {
        ++reports;
        whenReported = framesCocoa();
    });
    ASSERT_TRUE(rig->never([&] { return reports > 0; })) << "reported without any change";
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1280, 800}});
    ASSERT_TRUE(rig->until([&] { return reports > 0; }));
    EXPECT_EQ(whenReported, (std::vector<Rect>{{0, 0, 1280, 800}, {1280, 0, 1280, 800}}));
    EXPECT_TRUE(rig->never([&] { return reports > 1; }));
}

TEST_P(ScreensContract, UnpluggingIsReported) {
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1280, 800}});
    ASSERT_TRUE(arrives({{0, 0, 1280, 800}, {1280, 0, 1280, 800}}));
    rig->never([] { return false; });
    int reports = 0;
    const Subscription changes = desktop.screens.onChange([&] { ++reports; });
    rig->arrange({{0, 0, 1280, 800}, {}});
    EXPECT_TRUE(rig->until([&] { return reports == 1; }));
    EXPECT_EQ(framesCocoa(), (std::vector<Rect>{{0, 0, 1280, 800}}));
}

TEST_P(ScreensContract, MovingADisplayIsReported) {
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1280, 800}});
    ASSERT_TRUE(arrives({{0, 0, 1280, 800}, {1280, 0, 1280, 800}}));
    rig->never([] { return false; });
    int reports = 0;
    const Subscription changes = desktop.screens.onChange([&] { ++reports; });
    rig->arrange({{0, 0, 1280, 800}, {1280, 200, 1280, 800}});
    EXPECT_TRUE(rig->until([&] { return reports == 1; }));
    EXPECT_EQ(framesCocoa(), (std::vector<Rect>{{0, 0, 1280, 800}, {1280, -200, 1280, 800}}));
}

TEST_P(ScreensContract, ChangesShortlyAfterOneAnotherAreReportedTogether) {
    int reports = 0;
    const Subscription changes = desktop.screens.onChange([&] { ++reports; });
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1280, 800}});
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1280, 800}, {2560, 0, 1280, 800}});
    ASSERT_TRUE(rig->until([&] { return reports > 0; }));
    EXPECT_EQ(framesCocoa().size(), 3U);
    EXPECT_TRUE(rig->never([&] { return reports > 1; }));
}

TEST_P(ScreensContract, ChangeThatIsUndoneIsReportedIfSomebodyHasReadIt) {
    int reports = 0;
    const Subscription changes = desktop.screens.onChange([&] { ++reports; });
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1280, 800}});
    ASSERT_TRUE(arrives({{0, 0, 1280, 800}, {1280, 0, 1280, 800}}));
    rig->arrange({{0, 0, 1280, 800}, {}});
    ASSERT_TRUE(arrives({{0, 0, 1280, 800}}));
    EXPECT_TRUE(rig->until([&] { return reports > 0; }));
}

TEST_P(ScreensContract, NothingIsReportedAfterTheSubscription) {
    int reports = 0;
    Subscription changes = desktop.screens.onChange([&] { ++reports; });
    changes.reset();
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1280, 800}});
    ASSERT_TRUE(arrives({{0, 0, 1280, 800}, {1280, 0, 1280, 800}}));
    EXPECT_TRUE(rig->never([&] { return reports > 0; }));
}

TEST_P(ScreensContract, NoPollComesBetweenAChangeAndItsReport) {
    const std::vector<Rect> before = framesCocoa();
    bool isReported = false;
    int polls = 0;
    int early = 0;
    const Subscription changes = desktop.screens.onChange([&] { isReported = true; });
    const Subscription timer = desktop.pollTimers.polling(5ms, 0ms, [&] {
        ++polls;
        if (!isReported && framesCocoa() != before) ++early;
        return PollAgain::afterInterval;
    });
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1280, 800}});
    ASSERT_TRUE(rig->until([&] { return isReported; }));
    const int atReport = polls;
    EXPECT_TRUE(rig->until([&] { return polls > atReport; }));
    EXPECT_EQ(early, 0);
}

INSTANTIATE_TEST_SUITE_P(, ScreensContract, testing::Values(simulatedRig(), hotPlugRig()), rigName);

}  // namespace
}  // namespace quorvel::test
