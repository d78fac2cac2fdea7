#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/GlibRunLoop.hpp"
#include "platform/linux/X11Applications.hpp"
#include "tests/support/Printers.hpp"
#include "tests/support/x11/XSession.hpp"

namespace quorvel::test {

/// The code under test on a session of its own, and an independent eye on the result.
class ApplicationsFixture {
public:
    explicit ApplicationsFixture(XSessionOptions options) : session(options) {}
    ~ApplicationsFixture() { end(); }

    /// What the composition root does.
    struct Subject {
        explicit Subject(const std::string& displayName)
            : x(native::XConnection::open(displayName, error)),
              attached(loop.attach(*x)),
              elements(*x),
              manager(*x),
              entries(native::DesktopEntries::standardFolders()),
              applications(*x, loop, manager, elements, entries) {}

        std::string error;
        std::unique_ptr<native::XConnection> x;
        native::GlibRunLoop loop;
        Subscription attached;
        native::WindowElements elements;
        native::WindowManagerInfo manager;
        native::DesktopEntries entries;
        native::X11Applications applications;
    };

    /// Begins with the first use, so that a test can prepare the desktop before.
    Subject& subject() {
        if (!made) {
            made = std::make_unique<Subject>(session.displayName());
            activated = made->applications.onActivated([this](const RunningApplication& each) {
                events.push_back("+" + shortName(each));
            });
            deactivated = made->applications.onDeactivated([this](const RunningApplication& each) {
                events.push_back("-" + shortName(each));
            });
        }
        return *made;
    }
    native::X11Applications& applications() { return subject().applications; }
    /// As when the program ends.
    void end() {
        activated.reset();
        deactivated.reset();
        made.reset();
    }

    /// Runs the loop until `observed`; false when the time is up before.
    bool until(const std::function<bool()>& observed, std::chrono::milliseconds limit = patience) {
        subject();
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (!observed()) {
            if (std::chrono::steady_clock::now() >= deadline) return false;
            // So that what nobody tells the loop of is looked at too.
            const guint wake = g_timeout_add(
                2, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
            g_main_context_iteration(nullptr, TRUE);
            g_source_remove(wake);
        }
        return true;
    }
    bool never(const std::function<bool()>& observed, std::chrono::milliseconds span = 300ms) {
        return !until(observed, span);
    }

    /// A desktop entry in the user's own folder. Gives its path.
    std::string install(const std::string& id, const std::string& lines) const {
        return session.folder()
            .write("data/applications/" + id + ".desktop",
                   "[Desktop Entry]\nType=Application\nName=" + id + "\n" + lines + "\n")
            .string();
    }
    std::string script(const std::string& name, const std::string& text) const {
        const auto path = session.folder().write(name, "#!/bin/sh\n" + text + "\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path.string();
    }

    /// Windows of the test process that belong to the entry of this class.
    std::string installClass(const std::string& name) const {
        return install("test-" + name, "Exec=/bin/true\nStartupWMClass=" + name);
    }
    xcb_window_t open(const std::string& className, TestWindow window = {}) {
        subject();
        window.className = className;
        const xcb_window_t opened = session.open(client(), window);
        probe().activate(opened);
        if (!until([&] { return !session.windowManager() || probe().activeWindow() == opened; })) {
            throw std::runtime_error("the window does not become active");
        }
        return opened;
    }

    std::optional<RunningApplication> running(const std::string& path) {
        for (const RunningApplication& each : applications().runningApplications()) {
            if (each.bundlePath == path) return each;
        }
        return std::nullopt;
    }
    RunningApplication awaited(const std::string& path) {
        if (!until([&] { return running(path).has_value(); })) {
            std::string others;
            for (const RunningApplication& each : applications().runningApplications()) {
                others += ' ' + each.bundlePath.value_or("(no path)");
            }
            throw std::runtime_error(path + " is not running, but" + others);
        }
        return *running(path);
    }
    std::string front() {
        const auto application = applications().frontmostApplication();
        return application ? application->bundlePath.value_or("(no path)") : "";
    }
    /// And all that the server told before is handed out.
    bool becomesFront(const std::string& path) {
        if (!until([&] { return front() == path; })) return false;
        while (g_main_context_iteration(nullptr, FALSE)) {
        }
        return true;
    }
    /// Opens and waits for the completion: the error, or nothing.
    std::optional<std::string> opened(const std::string& path) {
        int completions = 0;
        std::optional<std::string> error;
        applications().open(path, [&](std::optional<std::string> reason) {
            ++completions;
            error = std::move(reason);
        });
        EXPECT_EQ(completions, 0) << "called from within";
        EXPECT_TRUE(until([&] { return completions > 0; }));
        EXPECT_TRUE(never([&] { return completions > 1; }, 50ms));
        return error;
    }

    /// Nothing of it is on the screen.
    bool isOutOfSight(xcb_window_t window) {
        if (probe().isIconic(window)) return true;
        const auto frame = probe().visibleFrame(window);
        return !frame || !frame->intersects({0, 0, 1280, 800});
    }

    TestClient& client() {
        if (!testClient) testClient = std::make_unique<TestClient>(session.displayName());
        return *testClient;
    }
    const XProbe& probe() const { return session.probe(); }

    XSession session;
    std::vector<std::string> events;

private:
    static std::string shortName(const RunningApplication& application) {
        if (!application.bundlePath) return "(no path)";
        return std::filesystem::path(*application.bundlePath).stem().string();
    }

    std::unique_ptr<TestClient> testClient;
    std::unique_ptr<Subject> made;
    Subscription activated;
    Subscription deactivated;
};

}  // namespace quorvel::test
