#pragma once

#include <string>
#include <vector>

#include "tests/support/x11/ChildProcess.hpp"
#include "tests/support/x11/ScratchFolder.hpp"

namespace quorvel::test {

enum class XServerKind {
    virtualFramebuffer,  ///< Xvfb: one display
    hotPlug,             ///< Xorg with the dummy driver: DUMMY0 to DUMMY2, the first one plugged in
};

/// A private X server, ready when the constructor returns. Throws when it does not start.
class XServer {
public:
    /// The size is that of the virtual framebuffer; the hot-plug server starts at 1280x800.
    XServer(XServerKind kind, int width, int height, Environment environment,
            const ScratchFolder& folder);

    const std::string& displayName() const { return name; }
    XServerKind kind() const { return serverKind; }
    bool isRunning() const { return process.isRunning(); }
    /// As when it crashes: every client loses its connection.
    void kill() { process.end(); }

    // Hot-plug only; `mode` is 1280x800 or 1920x1080.
    void plug(const std::string& output, int x, int y, const std::string& mode = "1280x800");
    void unplug(const std::string& output);
    void move(const std::string& output, int x, int y);
    /// One request with any options, so that several outputs change at once.
    void xrandr(std::vector<std::string> options);

private:
    XServerKind serverKind;
    Environment environment;
    const ScratchFolder& folder;
    std::string name;
    ChildProcess process;
};

}  // namespace quorvel::test
