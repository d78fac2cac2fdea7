// What happens to a window that stands off the screen while its window manager dies and the next
// one begins.

#include "platform/linux/MoveLadder.hpp"
#include "tests/x11/WindowAccessFixture.hpp"

namespace quorvel::test {
namespace {

class TakeoverTest : public testing::Test, public WindowAccessFixture {
protected:
    TakeoverTest() : WindowAccessFixture({.windowManager = WindowManagerKind::openbox}) {}

    TestClient client{session.displayName()};
    const xcb_window_t window = session.open(client, {.area = {300, 200, 400, 300}});
    const AXWindow held = handle(window);
    const Rect home = frame(held);

    void startNextManager() {
        session.windowManager()->kill();
        ASSERT_TRUE(waitUntil([&] { return session.probe().frameOf(window) == window; }));
        session.startWindowManager(WindowManagerKind::openbox);
        turn();
    }
    void tuck() {
        access().hold(held, home);
        ASSERT_EQ(access().setOrigin(held, {2 - home.width, home.y}, MoveStep::final), 0);
    }
    /// As the one that begins does it, with what it has found or been asked before.
    void putAway() {
        session.probe().requestMove(window, 50 - static_cast<int>(home.width), 60);
        ASSERT_TRUE(waitUntil([&] { return seen(window).x < 0 && seen(window).y < 100; }))
            << testing::PrintToString(seen(window));
    }
    bool comesHome() {
        return waitUntil([&] {
            turn();
            return seen(window).origin() == home.origin();
        });
    }
};

TEST_F(TakeoverTest, AWindowThatTheNewManagerPutsElsewhereAfterOurLastMoveComesHome) {
    startNextManager();
    tuck();
    putAway();
    access().letGo(held, EndOfHold::forgotten);
    EXPECT_TRUE(comesHome()) << testing::PrintToString(seen(window));
}

TEST_F(TakeoverTest, AWindowThatTheNewManagerPutsElsewhereOnceMoreComesHomeOnceMore) {
    tuck();
    startNextManager();
    access().letGo(held, EndOfHold::forgotten);
    ASSERT_TRUE(comesHome()) << testing::PrintToString(seen(window));
    putAway();
    EXPECT_TRUE(comesHome()) << testing::PrintToString(seen(window));
}

TEST_F(TakeoverTest, AWindowThatIsTuckedAgainStaysTucked) {
    tuck();
    startNextManager();
    access().letGo(held, EndOfHold::forgotten);
    ASSERT_TRUE(comesHome()) << testing::PrintToString(seen(window));
    tuck();
    EXPECT_TRUE(neverWithin(500ms, [&] {
        turn();
        return seen(window).x != 2 - home.width;
    })) << testing::PrintToString(seen(window));
}

// Between the look at a window and its move the frame may go.
TEST_F(TakeoverTest, AMoveByAFrameThatHasGoneMovesTheWindow) {
    native::XConnection& x = *subject().x;
    native::FrameReader frames(x);
    native::MoveLadder ladder(x, frames, subject().manager);
    const auto before = frames.read(window);
    ASSERT_TRUE(before);
    session.windowManager()->kill();
    ASSERT_TRUE(waitUntil([&] { return session.probe().frameOf(window) == window; }));
    const Point target{2 - home.width, 200};
    const auto moved =
        ladder.glide(*before, target, displays, std::chrono::steady_clock::now() + 200ms);
    EXPECT_EQ(moved.error, 0);
    EXPECT_EQ(moved.outcome, native::MoveOutcome::reached);
    EXPECT_EQ(seen(window).origin(), target);
}

}  // namespace
}  // namespace quorvel::test
