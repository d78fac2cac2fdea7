#include "platform/linux/X11PollTimers.hpp"

#include <xcb/xinput.h>

namespace quorvel::native {
namespace {

std::uint8_t opcodeOfInput(const XConnection& x) {
    const xcb_query_extension_reply_t* input = xcb_get_extension_data(x.xcb(), &xcb_input_id);
    if (!input || input->present == 0) return 0;
    const Reply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        x.xcb(), xcb_input_xi_query_version(x.xcb(), 2, 2), nullptr));
    if (!version) return 0;
    const bool isEnough =
        version->major_version > 2 || (version->major_version == 2 && version->minor_version >= 1);
    return isEnough ? input->major_opcode : std::uint8_t{0};
}

}  // namespace

X11PollTimers::X11PollTimers(XConnection& x, RunLoop& runLoop, X11Pointer& pointer,
                             X11Screens& screens, X11WindowAccess& windows)
    : RestingPollTimers(runLoop),
      x(x),
      pointer(pointer),
      screens(screens),
      windows(windows),
      inputOpcode(opcodeOfInput(x)),
      rawInput(x.onEvent([this](const xcb_generic_event_t& event) {
          if (!isListening || (event.response_type & 0x7F) != XCB_GE_GENERIC) return;
          const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
          if (generic.extension == inputOpcode) somethingMoved();
      })),
      heldWindows(windows.onHeldWindowChange([this] { somethingMoved(); })),
      holds(windows.onHold([this] { heldWindowsChanged(); })),
      displays(screens.onChange([this] { heldWindowsChanged(); })) {}

std::optional<PointerState> X11PollTimers::beginObservation() {
    // What has happened so far belongs to this observation, what happens during it to the next.
    x.readPending();
    windows.askForHeldFrames();
    const PointerState seen = pointer.observe();
    windows.takeHeldFrames();
    // What the server told before it answered.
    x.readPending();
    if (screens.areSettling()) return std::nullopt;
    return seen;
}

void X11PollTimers::endObservation() {
    windows.endObservation();
    pointer.endObservation();
}

bool X11PollTimers::listenToPointer(bool listens) {
    if (inputOpcode == 0) return false;
    isListening = listens;
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t events;
    } mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, 0};
    if (listens) {
        mask.events = XCB_INPUT_XI_EVENT_MASK_RAW_MOTION |
                      XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                      XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE;
    }
    xcb_input_xi_select_events(x.xcb(), x.root(), 1, &mask.head);
    x.flush();
    return true;
}

}  // namespace quorvel::native
