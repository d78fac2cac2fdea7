#include "main/shell/BindingHotKeys.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "main/shell/ProcessValues.hpp"
#include "platform/simulated/SimulatedLog.hpp"
#include "platform/simulated/SimulatedRunLoop.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Gives the handler to the test, which then plays the window server.
class OpenHotKeys final : public HotKeys {
public:
    HotKeyEventHandler handler = nullptr;
    void* userData = nullptr;

    std::int32_t installEventHandler(HotKeyEventHandler newHandler, void* data) override {
        handler = newHandler;
        userData = data;
        return 0;
    }
    HotKeyRegistration registerHotKey(std::uint32_t, std::uint32_t, HotKeyID) override {
        return {0, HotKeyRef{1}};
    }
    std::optional<std::uint32_t> virtualKeyCode(std::uint32_t) override { return std::nullopt; }
    void unregisterHotKey(HotKeyRef) override {}
};

struct BindingHotKeysTest : testing::Test {
    OpenHotKeys hotKeys;
    SimulatedRunLoop runLoop;
    SimulatedLog log;
    std::vector<std::uint32_t> pressed;
    BindingHotKeys bindingHotKeys{hotKeys, runLoop, log,
                                  [this](std::uint32_t id) { pressed.push_back(id); }};

    std::int32_t deliver(const HotKeyEvent& event) {
        return hotKeys.handler(nullptr, &event, hotKeys.userData);
    }
};

TEST_F(BindingHotKeysTest, TheHandlerReturnsAtOnceAndTheWorkComesFromTheQueue) {
    bindingHotKeys.apply({});
    EXPECT_EQ(deliver({HotKeyID{hotKeySignature, 103}}), 0);
    EXPECT_THAT(pressed, IsEmpty());
    runLoop.settle();
    EXPECT_THAT(pressed, ElementsAre(103));
}

TEST_F(BindingHotKeysTest, TheSignatureIsNotCompared) {
    bindingHotKeys.apply({});
    EXPECT_EQ(deliver({HotKeyID{fourCharacterCode("AES1"), 100}}), 0);
    runLoop.settle();
    EXPECT_THAT(pressed, ElementsAre(100));
}

TEST_F(BindingHotKeysTest, AnEventWithoutAnIdentifierIsTakenAsNumber0) {
    bindingHotKeys.apply({});
    EXPECT_EQ(deliver({}), 0);
    runLoop.settle();
    EXPECT_THAT(pressed, ElementsAre(0));
}

TEST_F(BindingHotKeysTest, TheInstalledRoutineIsThatOfTheProcess) {
    bindingHotKeys.apply({});
    EXPECT_EQ(hotKeys.handler, hotKeyEventHandler);
}

TEST(BindingHotKeysIndexTest, IdentifiersOutsideTheListHaveNoPlace) {
    EXPECT_EQ(BindingHotKeys::indexOf(100, 2), 0u);
    EXPECT_EQ(BindingHotKeys::indexOf(101, 2), 1u);
    EXPECT_EQ(BindingHotKeys::indexOf(102, 2), std::nullopt);
    EXPECT_EQ(BindingHotKeys::indexOf(99, 2), std::nullopt);
    EXPECT_EQ(BindingHotKeys::indexOf(0, 2), std::nullopt);
    EXPECT_EQ(BindingHotKeys::indexOf(100, 0), std::nullopt);
    EXPECT_EQ(BindingHotKeys::indexOf(4'294'967'295u, 2), std::nullopt);
}

}  // namespace
}  // namespace quorvel
