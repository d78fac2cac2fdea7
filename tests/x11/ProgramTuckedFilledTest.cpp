// Somebody fills the screen with a tucked window.

#include <gtest/gtest.h>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

class ProgramTuckedFilledTest : public testing::TestWithParam<WindowManagerKind> {};

TEST_P(ProgramTuckedFilledTest, AfterFullscreenItIsNotBackAtTheEdgeWithNobodyToRevealIt) {
    ProgramWithNotes program{{.windowManager = GetParam()}};
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.settledFrame(window);
    program.press(program.shortcut);
    ASSERT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
    // Until its slide has ended, a state is taken from it as one of before.
    ASSERT_TRUE(program.staysAt(window, ProgramOnX::atLeftEdge(home)));
    const XClient& x = program.probe().connection();
    const auto setFullscreen = [&](std::uint32_t action) {
        x.sendToRoot(window, "_NET_WM_STATE",
                     {action, x.atom("_NET_WM_STATE_FULLSCREEN"), 0, 2, 0});
    };
    setFullscreen(1);
    ASSERT_TRUE(
        program.waitForLine("Quorvel: released a tucked window — moved externally or closed"));
    setFullscreen(0);
    EXPECT_TRUE(waitUntil(
        [&] {
            const Rect now = program.seen(window);
            return std::abs(now.x - home.x) < 40 && std::abs(now.y - home.y) < 40 &&
                   now.width < 1280;
        },
        5s))
        << testing::PrintToString(program.seen(window));
}

INSTANTIATE_TEST_SUITE_P(, ProgramTuckedFilledTest,
                         testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                         WindowManagerKind::kwin, WindowManagerKind::i3,
                                         WindowManagerKind::marco),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace quorvel::test
