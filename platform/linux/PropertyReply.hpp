#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <string>
#include <vector>

namespace quorvel::native {

/// The 32-bit items of a property; none where there is no reply, or one of another type
/// (XCB_ATOM_ANY takes all) or format.
std::vector<std::uint32_t> numbersIn(const xcb_get_property_reply_t* reply, xcb_atom_t type);

/// The bytes of a property of whatever type; empty where there is no reply, or one of another
/// format.
std::string textIn(const xcb_get_property_reply_t* reply);

}  // namespace quorvel::native
