// The least that a program can do which answers a shortcut. It grabs Control+Alt+KEYSYM in every
// state of the lock keys, and for each press
//
//   quorvel-bench-floor activate WINDOW KEYSYM
//
// asks the window manager to activate WINDOW as a pager does, or
//
//   quorvel-bench-floor slide WINDOW KEYSYM DISTANCE
//
// moves WINDOW, which no window manager may hold, sideways by one request each 1/60 s for 160 ms:
// DISTANCE to the left and back in turn. What such a slide loses, the machine lost.
//
//   quorvel-bench-floor dwell PROPERTY X Y WIDTH HEIGHT MILLISECONDS
//
// looks at the pointer each 1/15 s. Once it has been there for so long, PROPERTY of the root window
// is changed, and again only after it has left.
//
//   quorvel-bench-floor sleep
//
// is connected, and sleeps. It ends on any signal, or with the server.

#include <poll.h>
#include <sys/timerfd.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeDeleter>;

template <class Number = std::uint32_t>
Number number(const char* text) {
    return static_cast<Number>(std::strtol(text, nullptr, 0));
}

xcb_keycode_t keycodeOf(const xcb_setup_t& setup, const xcb_get_keyboard_mapping_reply_t& map,
                        xcb_keysym_t keysym) {
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(&map);
    const int count = xcb_get_keyboard_mapping_keysyms_length(&map);
    for (int index = 0; index < count; ++index) {
        if (symbols[index] == keysym) {
            return static_cast<xcb_keycode_t>(setup.min_keycode + index / map.keysyms_per_keycode);
        }
    }
    return 0;
}

void activate(xcb_connection_t* connection, xcb_window_t root, xcb_atom_t request,
              xcb_window_t window, xcb_timestamp_t time) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = request;
    message.data.data32[0] = 2;
    message.data.data32[1] = time;
    xcb_send_event(connection, 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection);
}

int makeTimer(int perSecond) {
    const int timer = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
    const timespec span{0, 1'000'000'000 / perSecond};
    const itimerspec setting{span, span};
    timerfd_settime(timer, 0, &setting, nullptr);
    return timer;
}

void slide(xcb_connection_t* connection, xcb_window_t window, int from, int to) {
    using namespace std::chrono_literals;
    const int timer = makeTimer(60);
    const auto start = std::chrono::steady_clock::now();
    double fraction = 0;
    while (fraction < 1) {
        std::uint64_t expired = 0;
        if (read(timer, &expired, sizeof expired) != sizeof expired) continue;
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
        fraction = std::min(1.0, passed / 160ms);
        const auto x = static_cast<std::uint32_t>(from + static_cast<int>((to - from) * fraction));
        xcb_configure_window(connection, window, XCB_CONFIG_WINDOW_X, &x);
        xcb_flush(connection);
    }
    close(timer);
}

int dwell(char** arguments) {
    using Clock = std::chrono::steady_clock;
    const std::string_view property = arguments[0];
    const int x = number<int>(arguments[1]);
    const int y = number<int>(arguments[2]);
    const int width = number<int>(arguments[3]);
    const int height = number<int>(arguments[4]);
    const std::chrono::milliseconds limit(number<int>(arguments[5]));

    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) return 1;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(property.size()),
                        property.data()),
        nullptr));
    const int timer = makeTimer(15);
    bool wasInside = false;
    bool hasFired = false;
    Clock::time_point since;
    while (true) {
        std::uint64_t expired = 0;
        if (read(timer, &expired, sizeof expired) != sizeof expired) continue;
        const Reply<xcb_query_pointer_reply_t> at(
            xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
        if (!at || !atom) return 1;
        const bool isInside =
            at->root_x >= x && at->root_x < x + width && at->root_y >= y && at->root_y < y + height;
        const auto now = Clock::now();
        if (!isInside) hasFired = false;
        if (isInside && !wasInside) since = now;
        wasInside = isInside;
        if (!isInside || hasFired || now - since < limit) continue;
        hasFired = true;
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, root, atom->atom, XCB_ATOM_CARDINAL,
                            32, 0, nullptr);
        xcb_flush(connection);
    }
}

/// Nothing was asked for; a change of the keyboard is told all the same.
int sleepForever() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    while (!xcb_connection_has_error(connection)) {
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
        }
        pollfd server{xcb_get_file_descriptor(connection), POLLIN, 0};
        poll(&server, 1, -1);
    }
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount == 2 && std::string_view(arguments[1]) == "sleep") return sleepForever();
    if (argumentCount == 8 && std::string_view(arguments[1]) == "dwell") {
        return dwell(arguments + 2);
    }
    if (argumentCount < 4) return 2;
    const bool slides = std::string_view(arguments[1]) == "slide";
    if (slides != (argumentCount == 5)) return 2;
    const auto window = number<xcb_window_t>(arguments[2]);
    const auto keysym = number<xcb_keysym_t>(arguments[3]);

    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) return 1;
    const xcb_setup_t& setup = *xcb_get_setup(connection);
    const xcb_window_t root = xcb_setup_roots_iterator(&setup).data->root;

    constexpr std::string_view request = "_NET_ACTIVE_WINDOW";
    const auto atomCookie = xcb_intern_atom(connection, 0, request.size(), request.data());
    const auto mapCookie = xcb_get_keyboard_mapping(
        connection, setup.min_keycode,
        static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1));
    const auto placeCookie = xcb_get_geometry(connection, window);
    const Reply<xcb_intern_atom_reply_t> atom(
        xcb_intern_atom_reply(connection, atomCookie, nullptr));
    const Reply<xcb_get_keyboard_mapping_reply_t> map(
        xcb_get_keyboard_mapping_reply(connection, mapCookie, nullptr));
    const Reply<xcb_get_geometry_reply_t> place(
        xcb_get_geometry_reply(connection, placeCookie, nullptr));
    if (!atom || !map || !place) return 1;
    const xcb_keycode_t keycode = keycodeOf(setup, *map, keysym);
    if (keycode == 0) return 1;

    constexpr int chord = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
    constexpr int capsLock = XCB_MOD_MASK_LOCK;
    constexpr int numLock = XCB_MOD_MASK_2;
    for (const int locks : {0, capsLock, numLock, capsLock | numLock}) {
        xcb_grab_key(connection, 0, root, static_cast<std::uint16_t>(chord | locks), keycode,
                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    }
    xcb_flush(connection);

    int from = place->x;
    int to = slides ? from - number<int>(arguments[4]) : from;
    while (const Reply<xcb_generic_event_t> event{xcb_wait_for_event(connection)}) {
        if (event->response_type != XCB_KEY_PRESS) continue;
        xcb_key_press_event_t press;
        std::memcpy(&press, event.get(), sizeof press);
        if (slides) {
            slide(connection, window, from, to);
            std::swap(from, to);
        } else {
            activate(connection, root, atom->atom, window, press.time);
        }
    }
    return 0;
}
