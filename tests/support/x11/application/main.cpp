// A program with windows of a flat colour, for tests to play with. It opens and changes them at the
// word of a test that listens on a socket:
//   --control SOCKET   where the test listens; the program ends when that closes
//   --class NAME       instance and class of all its windows
//   --window X,Y,W,H   opens one at the start; the lines below do later
// Lines in, one answer line each:
//   open X Y W H COLOUR TRANSIENT MODAL   → identifier of the new window
//   close WINDOW | resize WINDOW W H      → "done"
// Closing the last window by way of the window manager ends the program.

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <optional>
#include <set>
#include <sstream>
#include <string>

#include "tests/support/x11/TestClient.hpp"

namespace {

using quorvel::Rect;
using quorvel::test::TestClient;
using quorvel::test::TestWindow;
using quorvel::test::XReply;

class Program {
public:
    Program(const std::string& windowClass, int control)
        : client(""), windowClass(windowClass), control(control) {}

    xcb_window_t open(const Rect& area, std::uint32_t colour, xcb_window_t transientFor,
                      bool modal) {
        TestWindow window;
        window.title = windowClass;
        window.instance = windowClass;
        window.className = windowClass;
        window.area = area;
        window.colour = colour;
        window.pid = static_cast<std::uint32_t>(getpid());
        window.transientFor = transientFor;
        if (transientFor != 0) window.type = "DIALOG";
        window.isModal = modal;
        const xcb_window_t opened = client.open(window);
        windows.insert(opened);
        return opened;
    }

    int run() {
        while (true) {
            if (!handleEvents()) return 0;
            pollfd sources[] = {{control, POLLIN, 0},
                                {xcb_get_file_descriptor(client.connection().xcb()), POLLIN, 0}};
            poll(sources, 2, -1);
            if (sources[0].revents != 0 && !readCommands()) return 0;
        }
    }

private:
    bool handleEvents() {
        xcb_connection_t* const x = client.connection().xcb();
        while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(x)}) {
            if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE) continue;
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
            if (message.data.data32[0] != client.connection().atom("WM_DELETE_WINDOW")) continue;
            close(message.window);
            if (windows.empty()) return false;
        }
        return xcb_connection_has_error(x) == 0;
    }

    void close(xcb_window_t window) {
        windows.erase(window);
        client.destroy(window);
    }

    bool readCommands() {
        char buffer[4096];
        const ssize_t got = read(control, buffer, sizeof buffer);
        if (got <= 0) return false;
        pending.append(buffer, static_cast<std::size_t>(got));
        for (std::size_t end = pending.find('\n'); end != std::string::npos;
             end = pending.find('\n')) {
            const std::string reply = obey(pending.substr(0, end)) + "\n";
            pending.erase(0, end + 1);
            if (write(control, reply.data(), reply.size()) < 0) return false;
        }
        return true;
    }

    std::string obey(const std::string& line) {
        std::istringstream words(line);
        std::string verb;
        words >> verb;
        if (verb == "open") {
            Rect area;
            std::uint32_t colour = 0;
            xcb_window_t transientFor = 0;
            bool modal = false;
            words >> area.x >> area.y >> area.width >> area.height >> colour >> transientFor >>
                modal;
            return std::to_string(open(area, colour, transientFor, modal));
        }
        xcb_window_t window = 0;
        int width = 0;
        int height = 0;
        words >> window;
        if (verb == "close") {
            close(window);
        } else if (verb == "resize" && words >> width >> height) {
            client.resize(window, width, height);
        } else {
            return "unknown";
        }
        return "done";
    }

    TestClient client;
    std::string windowClass;
    int control;
    std::set<xcb_window_t> windows;
    std::string pending;
};

int connectTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return -1;
    std::memcpy(address.sun_path, path.data(), path.size());
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return -1;
    }
    return descriptor;
}

std::optional<Rect> parseArea(const char* text) {
    Rect area;
    if (std::sscanf(text, "%lf,%lf,%lf,%lf", &area.x, &area.y, &area.width, &area.height) != 4) {
        return std::nullopt;
    }
    return area;
}

}  // namespace

int main(int count, char** arguments) {
    std::string control;
    std::string windowClass;
    std::optional<Rect> area;
    for (int i = 1; i + 1 < count; i += 2) {
        const std::string option = arguments[i];
        if (option == "--control") control = arguments[i + 1];
        if (option == "--class") windowClass = arguments[i + 1];
        if (option == "--window") area = parseArea(arguments[i + 1]);
    }
    const int descriptor = connectTo(control);
    if (descriptor < 0) {
        std::fprintf(stderr, "nobody listens at %s\n", control.c_str());
        return 1;
    }
    Program program(windowClass, descriptor);
    if (area) program.open(*area, 0x3366CC, 0, false);
    const std::string hello = std::to_string(getpid()) + "\n";
    if (write(descriptor, hello.data(), hello.size()) < 0) return 1;
    return program.run();
}
