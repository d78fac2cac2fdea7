#include "main/shell/Application.hpp"

#include <gtest/gtest.h>

#include "platform/simulated/SimulatedRunLoop.hpp"

namespace quorvel {
namespace {

struct Delegate final : ApplicationDelegate {
    explicit Delegate(Application& application) : application(application) {
        application.setDelegate(*this);
    }

    void applicationDidFinishLaunching() override {
        ++launches;
        if (onLaunch) onLaunch();
    }
    void applicationWillTerminate() override {
        ++terminations;
        if (onTerminate) onTerminate();
    }
    bool applicationSupportsSecureRestorableState() const override { return true; }

    Application& application;
    std::function<void()> onLaunch;
    std::function<void()> onTerminate;
    int launches = 0;
    int terminations = 0;
};

struct ApplicationTest : testing::Test {
    SimulatedRunLoop runLoop;
    Application application{runLoop};
    Delegate delegate{application};
};

TEST_F(ApplicationTest, LaunchesOnceAndRunsUntilItIsTerminated) {
    bool reached = false;
    delegate.onLaunch = [&] {
        runLoop.after(std::chrono::hours(1), [&] {
            reached = true;
            application.terminate();
        });
    };
    EXPECT_EQ(application.run(), 0);
    EXPECT_TRUE(reached);
    EXPECT_EQ(delegate.launches, 1);
    EXPECT_TRUE(runLoop.isStopped());
}

TEST_F(ApplicationTest, TellsTheDelegateOfTheTerminationExactlyOnce) {
    delegate.onLaunch = [&] {
        application.terminate();
        application.terminate();
    };
    delegate.onTerminate = [&] { application.terminate(); };
    application.run();
    EXPECT_EQ(delegate.terminations, 1);
}

TEST_F(ApplicationTest, StopsOnlyAfterTheDelegateHasBeenTold) {
    bool wasRunning = false;
    delegate.onLaunch = [&] { application.terminate(); };
    delegate.onTerminate = [&] { wasRunning = !runLoop.isStopped(); };
    application.run();
    EXPECT_TRUE(wasRunning);
}

TEST_F(ApplicationTest, ExitReturnsItsStatusWithoutTellingTheDelegate) {
    delegate.onLaunch = [&] {
        application.exit(1);
        application.terminate();
        application.exit(2);
    };
    EXPECT_EQ(application.run(), 1);
    EXPECT_EQ(delegate.terminations, 0);
}

TEST_F(ApplicationTest, ExitBeforeTheRunLeavesTheLoopAlone) {
    application.exit(3);
    EXPECT_EQ(application.run(), 3);
    EXPECT_EQ(delegate.launches, 0);
}

}  // namespace
}  // namespace quorvel
