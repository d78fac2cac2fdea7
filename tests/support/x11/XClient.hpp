#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Geometry.hpp"

namespace quorvel::test {

struct FreeReply {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using XReply = std::unique_ptr<T, FreeReply>;

/// One connection of the tests' own. Written apart from the program's connection on purpose: what
/// measures must not share the mistakes of what is measured.
class XClient {
public:
    explicit XClient(const std::string& displayName);
    ~XClient();
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;

    xcb_connection_t* xcb() const { return connection; }
    const xcb_screen_t& screen() const { return *screenInfo; }
    xcb_window_t root() const { return screenInfo->root; }
    xcb_atom_t atom(std::string_view name) const;
    std::string atomName(xcb_atom_t atom) const;

    /// Returns once the server has carried out all requests so far.
    void sync() const;

    std::vector<std::uint32_t> property32(xcb_window_t window, std::string_view name) const;
    std::string propertyText(xcb_window_t window, std::string_view name) const;
    void setProperty32(xcb_window_t window, std::string_view name, std::string_view type,
                       const std::vector<std::uint32_t>& items) const;
    void setPropertyText(xcb_window_t window, std::string_view name, std::string_view type,
                         std::string_view text) const;

    /// A message to the root window, as a pager sends it.
    void sendToRoot(xcb_window_t window, std::string_view type,
                    const std::array<std::uint32_t, 5>& data) const;

private:
    xcb_connection_t* connection;
    const xcb_screen_t* screenInfo = nullptr;
    mutable std::map<std::string, xcb_atom_t, std::less<>> atoms;
};

}  // namespace quorvel::test
