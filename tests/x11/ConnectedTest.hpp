#pragma once

#include <glib.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/linux/GlibRunLoop.hpp"
#include "platform/linux/XConnection.hpp"
#include "tests/support/x11/XSession.hpp"

namespace quorvel::test {

/// A session, and the program's own connection and run loop in it. The loop turns while something
/// is waited for.
class ConnectedTest : public testing::Test {
protected:
    explicit ConnectedTest(XSessionOptions options = {.windowManager = std::nullopt})
        : session(std::move(options)), connection(connect(session.displayName())) {}

    static std::unique_ptr<native::XConnection> connect(const std::string& displayName) {
        std::string error;
        auto connection = native::XConnection::open(displayName, error);
        if (!connection) throw std::runtime_error(error);
        return connection;
    }

    template <class Predicate>
    bool waitInLoop(Predicate&& observed, std::chrono::milliseconds limit = patience) {
        return waitUntil(
            [&] {
                while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
                }
                return observed();
            },
            limit);
    }

    template <class Predicate>
    bool neverInLoop(std::chrono::milliseconds span, Predicate&& observed) {
        return !waitInLoop(std::forward<Predicate>(observed), span);
    }

    /// Turns the loop until everything that the server has sent so far was handed out. What is
    /// to be seen must have been done through `session`, which waits for the server.
    void handleAllSoFar() {
        free(xcb_get_input_focus_reply(connection->xcb(), xcb_get_input_focus(connection->xcb()),
                                       nullptr));
        bool isDone = false;
        loop.async([&] { loop.async([&] { isDone = true; }); });
        EXPECT_TRUE(waitInLoop([&] { return isDone; }));
    }

    XSession session;
    std::unique_ptr<native::XConnection> connection;
    native::GlibRunLoop loop;
    Subscription attached = loop.attach(*connection);
};

}  // namespace quorvel::test
