#include "tests/support/x11/TestApplication.hpp"

#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>
#include <system_error>

namespace quorvel::test {
namespace {

std::string text(const Rect& area, const char* separator) {
    const auto number = [](double value) { return std::to_string(static_cast<int>(value)); };
    return number(area.x) + separator + number(area.y) + separator + number(area.width) +
           separator + number(area.height);
}

FileDescriptor listenAt(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string name = path.string();
    if (name.size() >= sizeof address.sun_path) throw std::length_error(name);
    std::memcpy(address.sun_path, name.data(), name.size());
    FileDescriptor descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (bind(descriptor.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(descriptor.get(), 8) != 0) {
        throw std::system_error(errno, std::generic_category(), name);
    }
    return descriptor;
}

}  // namespace

TestApplication::TestApplication(XSession& session, const std::filesystem::path& program,
                                 Options options)
    : session(session),
      program(program),
      options(std::move(options)),
      className("Quorvel-test-" + this->options.name),
      socketPath(session.folder() / ("control-" + this->options.name)),
      listener(listenAt(socketPath)) {
    std::string content =
        "[Desktop Entry]\nType=Application\nVersion=1.5\nName=" + this->options.name +
        "\nExec=" + program.string() + " --control " + socketPath.string() + " --class " +
        className;
    if (this->options.opensWindow) content += " --window " + text(this->options.area, ",");
    content += "\n";
    if (this->options.declaresClass) content += "StartupWMClass=" + className + "\n";
    entryPath = session.folder().write(
        "data/applications/org.quorvel.test." + this->options.name + ".desktop", content);
}

void TestApplication::start() {
    if (pid()) return;
    process =
        session.start({program.string(), "--control", socketPath.string(), "--class", className});
    if (!waitUntilRunning()) throw std::runtime_error(className + " does not start");
}

void TestApplication::acceptConnections() {
    while (true) {
        FileDescriptor next(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (next.get() < 0) break;
        const std::optional<std::string> hello = readLine(next.get());
        if (!hello) continue;
        ++launchCount;
        control = std::move(next);
        running = std::stoi(*hello);
    }
    pollfd state{control.get(), POLLRDHUP, 0};
    if (running && poll(&state, 1, 0) > 0 && (state.revents & (POLLRDHUP | POLLHUP)) != 0) {
        running.reset();
        control = FileDescriptor();
    }
}

bool TestApplication::waitUntilRunning(std::chrono::milliseconds limit) {
    return waitUntil([&] { return pid().has_value(); }, limit);
}

int TestApplication::launches() {
    acceptConnections();
    return launchCount;
}

std::optional<pid_t> TestApplication::pid() {
    acceptConnections();
    return running;
}

void TestApplication::kill() {
    if (const auto now = pid()) ::kill(*now, SIGKILL);
    if (!waitUntil([&] { return !pid(); })) throw std::runtime_error(className + " does not die");
}

void TestApplication::suspend() {
    if (const auto now = pid()) ::kill(*now, SIGSTOP);
}

void TestApplication::resume() {
    if (const auto now = pid()) ::kill(*now, SIGCONT);
}

std::string TestApplication::ask(const std::string& line) {
    acceptConnections();
    const std::string message = line + "\n";
    if (send(control.get(), message.data(), message.size(), MSG_NOSIGNAL) < 0) {
        throw std::system_error(errno, std::generic_category(), className);
    }
    const std::optional<std::string> reply = readLine(control.get());
    if (!reply) throw std::runtime_error(className + " does not answer");
    return *reply;
}

xcb_window_t TestApplication::open(const Rect& area, xcb_window_t transientFor, bool modal) {
    start();
    const std::string reply = ask("open " + text(area, " ") + " " + std::to_string(0x3366CC) + " " +
                                  std::to_string(transientFor) + " " + (modal ? "1" : "0"));
    const auto window = static_cast<xcb_window_t>(std::stoul(reply));
    session.waitUntilShown(window);
    return window;
}

xcb_window_t TestApplication::waitForWindow() {
    xcb_window_t window = XCB_WINDOW_NONE;
    waitUntil([&] {
        window = session.probe().windowOfClass(className);
        return window != XCB_WINDOW_NONE;
    });
    if (window == XCB_WINDOW_NONE) throw std::runtime_error(className + " opens no window");
    session.waitUntilShown(window);
    return window;
}

void TestApplication::close(xcb_window_t window) {
    ask("close " + std::to_string(window));
}

void TestApplication::resize(xcb_window_t window, int width, int height) {
    ask("resize " + std::to_string(window) + " " + std::to_string(width) + " " +
        std::to_string(height));
}

}  // namespace quorvel::test
