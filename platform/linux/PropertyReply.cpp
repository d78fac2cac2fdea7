#include "platform/linux/PropertyReply.hpp"

#include <cstddef>
#include <cstring>

namespace quorvel::native {

std::vector<std::uint32_t> numbersIn(const xcb_get_property_reply_t* reply, xcb_atom_t type) {
    if (reply == nullptr || reply->format != 32) return {};
    if (type != XCB_ATOM_ANY && reply->type != type) return {};
    std::vector<std::uint32_t> numbers(
        static_cast<std::size_t>(xcb_get_property_value_length(reply)) / 4);
    if (!numbers.empty()) {
        std::memcpy(numbers.data(), xcb_get_property_value(reply), numbers.size() * 4);
    }
    return numbers;
}

std::string textIn(const xcb_get_property_reply_t* reply) {
    if (reply == nullptr || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply)),
            static_cast<std::size_t>(xcb_get_property_value_length(reply))};
}

}  // namespace quorvel::native
