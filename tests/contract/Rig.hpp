#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Desktop.hpp"

namespace quorvel::test {

using namespace std::chrono_literals;

/// A desktop and the people and programs on it, the same for the one in memory and for real ones.
/// What is done here has happened when the call returns; what the desktop tells about it comes
/// later, through the loop. A call that the desktop does not follow throws.
class Rig {
public:
    /// A window of a test application, by a name that the desktop under test does not know.
    using Window = std::uint64_t;

    virtual ~Rig() = default;

    virtual Desktop desktop() = 0;

    // Time ---------------------------------------------------------------------------------------

    /// Runs the loop until `observed`; false when the time is up before.
    virtual bool until(const std::function<bool()>& observed,
                       std::chrono::milliseconds limit = 5s) = 0;
    /// Runs the loop for that long and shows that something never happens meanwhile.
    bool never(const std::function<bool()>& observed, std::chrono::milliseconds span = 300ms) {
        return !until(observed, span);
    }
    virtual void requestTermination() = 0;  ///< SIGTERM

    // Displays -----------------------------------------------------------------------------------

    /// One rectangle a socket, at most three; an empty one unplugs what is there. Sizes are
    /// 1280 × 800 or 1920 × 1080.
    virtual void arrange(const std::vector<Rect>& displaysAX) = 0;

    // Keyboard and pointer -----------------------------------------------------------------------

    /// Keys by name ("T", "F5", "LEFTBRACKET"), modifiers as a mask of the hot-key service.
    virtual void keyDown(const std::string& key, std::uint32_t modifiers) = 0;
    virtual void keyUp(const std::string& key, std::uint32_t modifiers) = 0;
    void press(const std::string& key, std::uint32_t modifiers) {
        keyDown(key, modifiers);
        keyUp(key, modifiers);
    }
    enum class Lock { capsLock, numLock };
    virtual void toggleLock(Lock lock) = 0;
    /// Another program takes the combination as its hot key.
    virtual void holdElsewhere(const std::string& key, std::uint32_t modifiers) = 0;
    virtual void releaseElsewhere(const std::string& key, std::uint32_t modifiers) = 0;

    virtual void movePointer(Point pointAX) = 0;
    virtual void pressButton(std::uint8_t button) = 0;
    virtual void releaseButton(std::uint8_t button) = 0;

    // Applications and their windows -------------------------------------------------------------

    /// Puts a program on the disk that opens one window when it is launched. Gives its path.
    virtual std::string install(const std::string& name) = 0;
    /// The same program by another path, outside the standard folders.
    virtual std::string installCopy(const std::string& path) = 0;
    /// Starts the program at need. The window is active afterwards; its frame is about as wanted.
    virtual Window openWindow(const std::string& path, const Rect& wantedFrameAX) = 0;
    virtual Window openDialog(const std::string& path, Window parent) = 0;
    /// The one that a launch has opened.
    virtual Window launchedWindow(const std::string& path) = 0;
    virtual void closeWindow(Window window) = 0;
    virtual int launches(const std::string& path) = 0;
    virtual std::int32_t processIdentifier(const std::string& path) = 0;
    virtual void kill(const std::string& path) = 0;
    /// It no longer answers anybody, until `resume`.
    virtual void suspend(const std::string& path) = 0;
    virtual void resume(const std::string& path) = 0;

    // What the user does to a window.
    virtual void activate(Window window) = 0;
    virtual void iconify(Window window) = 0;
    virtual void moveTo(Window window, Point originAX) = 0;
    /// Maximizes it; makes it fullscreen where windows cannot be maximized.
    virtual void fillDisplay(Window window) = 0;

    // What is to be seen, measured without the code under test.
    virtual std::optional<Rect> seenFrameAX(Window window) = 0;
    /// False for an iconic one, and for one that is nowhere on a display.
    virtual bool isShown(Window window) = 0;
    virtual bool isActive(Window window) = 0;
    virtual bool isInFrontOf(Window front, Window back) = 0;
    virtual bool fillsDisplay(Window window) = 0;  ///< by its state, not by its frame

    // This program itself ------------------------------------------------------------------------

    /// A window of the process under test, active afterwards.
    virtual Window openOwnWindow() = 0;
    virtual std::int32_t ownProcessIdentifier() = 0;

    /// No window manager runs any more.
    virtual void endWindowManager() = 0;
    virtual void restartWindowManager() = 0;
    /// How often the user was told why this program is not trusted, and the end of that message.
    virtual int trustPrompts() = 0;
    virtual void closeTrustPrompt() = 0;

    // Files of others ----------------------------------------------------------------------------

    /// One text in the preferences of another program.
    virtual void writeOtherDomain(const std::string& domain, const std::string& key,
                                  const std::string& text) = 0;
    virtual void writePreset(const std::string& key, const std::string& text) = 0;
};

/// Which desktop a test runs on.
struct RigKind {
    std::string name;
    std::function<std::unique_ptr<Rig>()> make;
};
void PrintTo(const RigKind& kind, std::ostream* out);

/// In memory.
RigKind simulatedRig();
/// A private X server without a window manager: one display of 1280 × 800.
RigKind bareRig();
/// The same with displays that come and go; the first one is plugged in.
RigKind hotPlugRig();
/// One display of 1280 × 800 and a window manager, each of those that the tests know.
std::vector<RigKind> windowManagerRigs();
/// Those where a user can iconify a window.
std::vector<RigKind> iconifyingRigs();
/// Two displays of 1280 × 800 side by side, which can be unplugged: with each window manager, and
/// in memory.
std::vector<RigKind> twoDisplayRigs();
std::vector<RigKind> operator+(std::vector<RigKind> kinds, const RigKind& more);

}  // namespace quorvel::test
