#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Lines.hpp"
#include "platform/linux/ClientWindow.hpp"
#include "platform/linux/FrameReader.hpp"
#include "platform/linux/HiddenNotes.hpp"
#include "platform/linux/HoldNote.hpp"
#include "platform/linux/PropertyReply.hpp"
#include "platform/linux/WindowNotes.hpp"

using namespace quorvel;
using namespace quorvel::native;
using fuzz::require;

namespace {

constexpr xcb_window_t root = 1;

using Property = Reply<xcb_get_property_reply_t>;

class Atoms {
public:
    xcb_atom_t operator()(const std::string& name) {
        constexpr xcb_atom_t firstOwn = 100;
        return known.emplace(name, firstOwn + static_cast<xcb_atom_t>(known.size())).first->second;
    }

private:
    std::map<std::string, xcb_atom_t> known{
        {"ATOM", XCB_ATOM_ATOM},     {"CARDINAL", XCB_ATOM_CARDINAL}, {"INTEGER", XCB_ATOM_INTEGER},
        {"STRING", XCB_ATOM_STRING}, {"WINDOW", XCB_ATOM_WINDOW},     {"UID", geteuid()}};
};

/// What the server sends for a property of these bytes, and not a byte more.
Property replyOf(xcb_atom_t type, std::uint8_t format, const std::string& bytes,
                 std::uint32_t bytesAfter) {
    auto* const reply = static_cast<xcb_get_property_reply_t*>(
        std::calloc(1, sizeof(xcb_get_property_reply_t) + bytes.size()));
    reply->response_type = 1;
    reply->type = type;
    reply->format = format;
    reply->bytes_after = bytesAfter;
    reply->value_len = format == 0 ? 0 : static_cast<std::uint32_t>(bytes.size() / (format / 8));
    if (!bytes.empty()) std::memcpy(xcb_get_property_value(reply), bytes.data(), bytes.size());
    return Property(reply);
}

template <class Item>
void append(std::string& bytes, Item item) {
    bytes.append(reinterpret_cast<const char*>(&item), sizeof item);
}

struct Content {
    xcb_atom_t type = XCB_ATOM_NONE;
    std::uint8_t format = 0;
    std::string bytes;
    std::uint32_t bytesAfter = 0;

    Property reply() const { return replyOf(type, format, bytes, bytesAfter); }
};

/// The lines of an input: "NAME TYPE FORMAT VALUE". A format of 8 bits has a text, in which |
/// stands for a zero; the others have numbers, or names of atoms. More than one answer brings is a
/// format with a + behind it.
struct Properties {
    std::map<std::string, Content, std::less<>> all;
    bool isGone = false;
    bool tellsHidden = false;
    std::vector<double> areas;

    Properties(std::string_view input, Atoms& atoms) {
        for (const std::string_view line : fuzz::parts(input, '\n')) {
            const auto [name, behindName] = fuzz::cut(line, ' ');
            if (name == "gone") isGone = true;
            if (name == "hides") tellsHidden = true;
            if (name == "areas") {
                for (const std::uint32_t number : numbers(behindName, atoms)) {
                    areas.push_back(static_cast<std::int16_t>(number));
                }
            }
            const auto [type, behindType] = fuzz::cut(behindName, ' ');
            const auto [format, value] = fuzz::cut(behindType, ' ');
            Content content{atoms(std::string(type)), 8, {}, format.ends_with('+') ? 4U : 0U};
            if (format.starts_with("8")) {
                content.bytes = value;
                std::replace(content.bytes.begin(), content.bytes.end(), '|', '\0');
            } else if (format.starts_with("16") || format.starts_with("32")) {
                content.format = format.starts_with("16") ? 16 : 32;
                for (const std::uint32_t number : numbers(value, atoms)) {
                    if (content.format == 16) {
                        append(content.bytes, static_cast<std::uint16_t>(number));
                    } else {
                        append(content.bytes, number);
                    }
                }
            } else {
                continue;
            }
            all.insert_or_assign(std::string(name), std::move(content));
        }
    }

    /// What the server says of one that there is not has no type.
    Property operator[](std::string_view name) const {
        if (isGone) return nullptr;
        const auto known = all.find(name);
        return known != all.end() ? known->second.reply() : Content{}.reply();
    }

private:
    static std::vector<std::uint32_t> numbers(std::string_view text, Atoms& atoms) {
        std::vector<std::uint32_t> result;
        for (const std::string_view word : fuzz::parts(text, ' ')) {
            std::int64_t number = 0;
            const auto [end, error] =
                std::from_chars(word.data(), word.data() + word.size(), number);
            result.push_back(error == std::errc() ? static_cast<std::uint32_t>(number)
                                                  : atoms(std::string(word)));
        }
        return result;
    }
};

ClientWindowAnswers answersOf(const Properties& properties) {
    return {properties["_NET_WM_WINDOW_TYPE"],
            properties["WM_TRANSIENT_FOR"],
            properties["_NET_WM_STATE"],
            properties["WM_STATE"],
            properties["WM_CLASS"],
            properties["_GTK_APPLICATION_ID"],
            properties["_KDE_NET_WM_DESKTOP_FILE"],
            properties["_NET_WM_PID"],
            properties["_NET_WM_DESKTOP"],
            nullptr};
}

Content numbers(xcb_atom_t type, const std::vector<std::uint32_t>& items) {
    Content content{type, 32, {}, 0};
    for (const std::uint32_t item : items) append(content.bytes, item);
    return content;
}

/// As a well-behaved client and window manager would put the same.
Properties wellFormed(const ClientWindow& client, const ClientWindowAtoms& atoms, Atoms& names) {
    Properties result("", names);
    result.tellsHidden = true;
    const auto set = [&](const char* name, Content content) {
        result.all.insert_or_assign(name, std::move(content));
    };
    const std::map<ClientWindow::Kind, xcb_atom_t> kinds{
        {ClientWindow::Kind::normal, atoms.normal},
        {ClientWindow::Kind::dialog, atoms.dialog},
        {ClientWindow::Kind::furniture, atoms.furniture[0]},
        {ClientWindow::Kind::accessory, atoms.accessories[0]}};
    set("_NET_WM_WINDOW_TYPE", numbers(XCB_ATOM_ATOM, {kinds.at(client.kind)}));
    set("WM_TRANSIENT_FOR", numbers(XCB_ATOM_WINDOW, {client.transientFor}));
    std::vector<std::uint32_t> states;
    if (client.isModal) states.push_back(atoms.modal);
    if (client.isShaded) states.push_back(atoms.shaded);
    if (client.isIconic) states.push_back(atoms.hidden);
    set("_NET_WM_STATE", numbers(XCB_ATOM_ATOM, states));
    const auto text = [](const std::string& bytes) {
        return Content{XCB_ATOM_STRING, 8, bytes, 0};
    };
    set("WM_CLASS", text(client.instanceName + '\0' + client.className + '\0'));
    set("_GTK_APPLICATION_ID", text(client.gtkApplicationId));
    set("_KDE_NET_WM_DESKTOP_FILE", text(client.kdeDesktopFile));
    set("_NET_WM_PID", numbers(XCB_ATOM_CARDINAL, {static_cast<std::uint32_t>(client.pid)}));
    if (client.desktop) set("_NET_WM_DESKTOP", numbers(XCB_ATOM_CARDINAL, {*client.desktop}));
    return result;
}

void checkClientWindow(const Properties& properties, const ClientWindowAtoms& atoms, Atoms& names) {
    const ClientWindowAnswers answers = answersOf(properties);
    const auto client = clientWindowOf(answers, atoms, root, properties.tellsHidden);
    require(client == clientWindowOf(answers, atoms, root, properties.tellsHidden));
    require(client.has_value() != properties.isGone);
    if (!client) return;
    require(client->pid >= 0 && client->transientFor != root);
    for (const std::string& text : {client->instanceName, client->className,
                                    client->gtkApplicationId, client->kdeDesktopFile}) {
        require(text.find('\0') == std::string::npos);
    }
    const Properties same = wellFormed(*client, atoms, names);
    require(clientWindowOf(answersOf(same), atoms, root, true) == client);
}

void checkNotes(const Properties& properties) {
    if (const auto content =
            WindowNotes::contentIn(properties["_QUORVEL_HELD"].get(), HoldNote::length)) {
        require(content->size() == HoldNote::length);
        const WindowNotes::Content meant = HoldNote(*content).content();
        require(meant.size() == HoldNote::length);
        require(HoldNote(meant).content() == meant);
        require(HoldNote(meant).home == HoldNote(*content).home);
        require(HoldNote(meant).given == HoldNote(*content).given);
    }
    if (const auto content =
            WindowNotes::contentIn(properties["_QUORVEL_HIDDEN"].get(), HiddenNotes::length)) {
        require(content->size() == HiddenNotes::length);
        require(HiddenNotes::movedFrameIn(*content).has_value() == ((*content)[0] != 0));
    }
}

bool isInside(const Rect& inner, const Rect& outer) {
    return inner.minX() >= outer.minX() && inner.maxX() <= outer.maxX() &&
           inner.minY() >= outer.minY() && inner.maxY() <= outer.maxY();
}

void checkFrame(const Properties& properties) {
    const auto extents = [&](const char* name) {
        const Extents read = extentsIn(numbersIn(properties[name].get(), XCB_ATOM_ANY));
        for (const double width : {read.left, read.right, read.top, read.bottom}) {
            require(width >= 0 && width <= 0x7FFF);
        }
        return read;
    };
    const Extents shadow = extents("_GTK_FRAME_EXTENTS");
    const Extents decoration = extents("_NET_FRAME_EXTENTS");
    const auto& areas = properties.areas;
    if (areas.size() < 4) return;
    const Rect frame{areas[0], areas[1], std::abs(areas[2]) + 1, std::abs(areas[3]) + 1};
    const Rect client =
        areas.size() < 8 ? frame
                         : Rect{areas[4], areas[5], std::abs(areas[6]) + 1, std::abs(areas[7]) + 1};
    const Rect seen = seenArea(client, frame, shadow, decoration);
    require(!seen.isEmpty() && isInside(seen, frame));
}

}  // namespace

/// Whatever is written on a window: what is read of it is well-formed, what is meant survives being
/// written, and nothing is seen of a window outside its frame.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Atoms names;
    const ClientWindowAtoms atoms([&](const std::string& name) { return names(name); });
    const Properties properties(fuzz::textOf(data, size), names);
    checkClientWindow(properties, atoms, names);
    checkNotes(properties);
    checkFrame(properties);
    return 0;
}
