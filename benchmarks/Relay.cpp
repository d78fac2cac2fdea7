#include "benchmarks/Relay.hpp"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace quorvel::bench {
namespace {

/// After so long without a byte the client is waiting. Taken for waiting too early it only counts
/// as one round trip more, never less.
constexpr int silence = 20;  // ms

/// Of a busy relay this is a long time.
constexpr auto quiet = std::chrono::milliseconds(50);

/// Display numbers that no server takes by itself.
constexpr int firstNumber = 7000;
constexpr int lastNumber = 7100;

std::filesystem::path socketOf(const std::string& displayName) {
    return "/tmp/.X11-unix/X" + displayName.substr(1);
}

sockaddr_un addressOf(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.native().size() >= sizeof address.sun_path) throw std::length_error(path);
    std::memcpy(address.sun_path, path.c_str(), path.native().size());
    return address;
}

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

bool bindTo(int descriptor, const std::filesystem::path& path) {
    const sockaddr_un address = addressOf(path);
    return bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

test::FileDescriptor makeSocket() {
    test::FileDescriptor descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (descriptor.get() < 0) fail("socket");
    return descriptor;
}

bool writeAll(int descriptor, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = send(descriptor, data, size, MSG_NOSIGNAL);
        if (written <= 0) return false;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

}  // namespace

Relay::Relay(const std::string& displayName)
    : serverSocket(socketOf(displayName)), listener(makeSocket()), stop(eventfd(0, EFD_CLOEXEC)) {
    int number = firstNumber;
    while (!bindTo(listener.get(), socketOf(":" + std::to_string(number)))) {
        if (errno != EADDRINUSE || ++number == lastNumber) fail("bind");
    }
    name = ":" + std::to_string(number);
    if (listen(listener.get(), 1) != 0) fail("listen");
    thread = std::thread([this] { run(); });
}

Relay::~Relay() {
    eventfd_write(stop.get(), 1);
    thread.join();
    std::error_code ignored;
    std::filesystem::remove(socketOf(name), ignored);
}

void Relay::run() {
    std::array<pollfd, 2> waiting{{{stop.get(), POLLIN, 0}, {listener.get(), POLLIN, 0}}};
    poll(waiting.data(), waiting.size(), -1);
    if (waiting[0].revents != 0) return;
    const test::FileDescriptor client(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
    const test::FileDescriptor server = makeSocket();
    const sockaddr_un address = addressOf(serverSocket);
    if (connect(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        pass(client.get(), server.get());
    }
}

void Relay::pass(int client, int server) {
    std::vector<char> heldBack;
    std::array<char, 65536> buffer;
    bool hasAsked = false;
    while (true) {
        std::array<pollfd, 3> waiting{
            {{stop.get(), POLLIN, 0}, {client, POLLIN, 0}, {server, POLLIN, 0}}};
        const int limit = heldBack.empty() ? -1 : isCounting ? silence : 0;
        const int ready = poll(waiting.data(), waiting.size(), limit);
        if (waiting[0].revents != 0) return;
        if (waiting[1].revents != 0) {
            const ssize_t got = read(client, buffer.data(), buffer.size());
            if (got <= 0 || !writeAll(server, buffer.data(), static_cast<std::size_t>(got))) return;
            bytes += got;
            hasAsked = true;
        }
        if (waiting[2].revents != 0) {
            const ssize_t got = read(server, buffer.data(), buffer.size());
            if (got <= 0) return;
            bytes += got;
            heldBack.insert(heldBack.end(), buffer.data(), buffer.data() + got);
        }
        holdsBack = !heldBack.empty();
        if (ready != 0 || heldBack.empty()) continue;
        if (hasAsked && isCounting) ++trips;
        hasAsked = false;
        if (!writeAll(client, heldBack.data(), heldBack.size())) return;
        heldBack.clear();
        holdsBack = false;
    }
}

void Relay::settle() const {
    long last = bytes;
    while (!test::neverWithin(quiet, [&] { return bytes != last || holdsBack; })) last = bytes;
}

}  // namespace quorvel::bench
