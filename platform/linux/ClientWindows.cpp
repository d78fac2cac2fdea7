#include "platform/linux/ClientWindows.hpp"

#include <xcb/res.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace quorvel::native {
namespace {

constexpr std::uint32_t iconicState = 3;
constexpr std::uint32_t longestText = 1024;  // in 32-bit units, as the next
constexpr std::uint32_t longestList = 64;

template <class... Items>
bool isOneOf(xcb_atom_t atom, Items... items) {
    return ((atom == items) || ...);
}

std::vector<std::uint32_t> numbersIn(const xcb_get_property_reply_t* reply, xcb_atom_t type) {
    if (reply == nullptr || reply->format != 32 || reply->type != type) return {};
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

/// Texts that end with a zero where they do, one way or the other.
std::string firstPart(const std::string& text) {
    return text.substr(0, text.find('\0'));
}

Reply<xcb_query_tree_reply_t> takeTree(const XConnection& x, xcb_query_tree_cookie_t cookie) {
    return Reply<xcb_query_tree_reply_t>(xcb_query_tree_reply(x.xcb(), cookie, nullptr));
}

std::vector<xcb_window_t> childrenIn(const xcb_query_tree_reply_t* reply) {
    if (reply == nullptr) return {};
    const xcb_window_t* first = xcb_query_tree_children(reply);
    return {first, first + xcb_query_tree_children_length(reply)};
}

}  // namespace

struct ClientWindows::Atoms {
    explicit Atoms(const XConnection& x)
        : wmState(x.atom("WM_STATE")),
          netState(x.atom("_NET_WM_STATE")),
          hidden(x.atom("_NET_WM_STATE_HIDDEN")),
          shaded(x.atom("_NET_WM_STATE_SHADED")),
          modal(x.atom("_NET_WM_STATE_MODAL")),
          type(x.atom("_NET_WM_WINDOW_TYPE")),
          normal(x.atom("_NET_WM_WINDOW_TYPE_NORMAL")),
          dialog(x.atom("_NET_WM_WINDOW_TYPE_DIALOG")),
          furniture{x.atom("_NET_WM_WINDOW_TYPE_DOCK"), x.atom("_NET_WM_WINDOW_TYPE_DESKTOP")},
          gtkApplicationId(x.atom("_GTK_APPLICATION_ID")),
          kdeDesktopFile(x.atom("_KDE_NET_WM_DESKTOP_FILE")),
          pid(x.atom("_NET_WM_PID")),
          desktop(x.atom("_NET_WM_DESKTOP")),
          clientList(x.atom("_NET_CLIENT_LIST")),
          activeWindow(x.atom("_NET_ACTIVE_WINDOW")) {
        for (const char* name : {"UTILITY", "TOOLBAR", "MENU", "SPLASH", "DROPDOWN_MENU",
                                 "POPUP_MENU", "TOOLTIP", "NOTIFICATION", "COMBO", "DND"}) {
            accessories.push_back(x.atom(std::string("_NET_WM_WINDOW_TYPE_") + name));
        }
    }

    /// The first type that is known decides, as the sender orders them by preference.
    std::optional<ClientWindow::Kind> kindOf(const std::vector<xcb_atom_t>& types) const {
        for (const xcb_atom_t type : types) {
            if (type == normal) return ClientWindow::Kind::normal;
            if (type == dialog) return ClientWindow::Kind::dialog;
            if (isOneOf(type, furniture[0], furniture[1])) return ClientWindow::Kind::furniture;
            if (std::find(accessories.begin(), accessories.end(), type) != accessories.end()) {
                return ClientWindow::Kind::accessory;
            }
        }
        return std::nullopt;
    }

    xcb_atom_t wmState, netState, hidden, shaded, modal, type, normal, dialog;
    std::array<xcb_atom_t, 2> furniture;
    std::vector<xcb_atom_t> accessories;
    xcb_atom_t gtkApplicationId, kdeDesktopFile, pid, desktop, clientList, activeWindow;
};

struct ClientWindows::Questions {
    xcb_get_property_cookie_t type, transientFor, netState, wmState, classes, gtkApplicationId,
        kdeDesktopFile, pid, desktop;
    std::optional<xcb_res_query_client_ids_cookie_t> owner;
};

ClientWindows::ClientWindows(XConnection& x, WindowManagerInfo& manager)
    : x(x),
      manager(manager),
      atoms(std::make_shared<Atoms>(x)),
      events(x.onEvent([this](const xcb_generic_event_t& event) { handle(event); })),
      managerEvents(manager.onChange([this] { managerChanged(); })) {
    x.selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE);
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(x.xcb(), &xcb_res_id);
    tellsPids = extension != nullptr && extension->present != 0;
    if (!manager.isRunning()) x.selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    tellsHidden = manager.supports("_NET_WM_STATE_HIDDEN");
    activeWindow = readActive();
    if (activeWindow != XCB_WINDOW_NONE) activity.push_back(activeWindow);
}

std::vector<xcb_window_t> ClientWindows::all() {
    updateList();
    if (!activityIsSeeded && !list.empty()) {
        // What lies on top was in use last, as far as anybody can tell afterwards.
        activityIsSeeded = true;
        for (const xcb_window_t window : byStacking(list)) {
            if (!hasBeenActive(window)) activity.push_back(window);
        }
    }
    std::vector<xcb_window_t> result;
    std::unordered_set<xcb_window_t> rest;
    for (const xcb_window_t window : list) {
        const auto found = known.find(window);
        if (found == known.end()) continue;
        const ClientWindow::Kind kind = found->second.kind;
        if (kind == ClientWindow::Kind::normal || kind == ClientWindow::Kind::dialog) {
            rest.insert(window);
        }
    }
    for (const xcb_window_t window : activity) {
        if (rest.erase(window) > 0) result.push_back(window);
    }
    for (const xcb_window_t window : list) {
        if (rest.erase(window) > 0) result.push_back(window);
    }
    return result;
}

bool ClientWindows::isManaged(xcb_window_t window) {
    updateList();
    return std::find(list.begin(), list.end(), window) != list.end();
}

const ClientWindow* ClientWindows::find(xcb_window_t window) {
    if (window == XCB_WINDOW_NONE || window == x.root()) return nullptr;
    load({window});
    const auto found = known.find(window);
    return found == known.end() ? nullptr : &found->second;
}

void ClientWindows::refresh(const std::vector<xcb_window_t>& windows) {
    for (const xcb_window_t window : windows) known.erase(window);
    load(windows);
}

xcb_window_t ClientWindows::activeNow() {
    return readActive();
}

bool ClientWindows::hasBeenActive(xcb_window_t window) const {
    return std::find(activity.begin(), activity.end(), window) != activity.end();
}

xcb_window_t ClientWindows::topmost(const std::vector<xcb_window_t>& windows) const {
    if (windows.size() < 2)
        return windows.empty() ? xcb_window_t{XCB_WINDOW_NONE} : windows.front();
    const auto order = byStacking(windows);
    return order.empty() ? windows.front() : order.front();
}

bool ClientWindows::isOnCurrentDesktop(xcb_window_t window) {
    const ClientWindow* client = find(window);
    if (client == nullptr || client->desktop.value_or(allDesktops) == allDesktops) return true;
    const auto current = x.property32(x.root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL);
    return current.empty() || current.front() == client->desktop;
}

void ClientWindows::activate(xcb_window_t window) {
    if (manager.isRunning()) {
        constexpr std::uint32_t fromPager = 2;
        // Not every window manager changes the workspace for a window that is to be active.
        if (!isOnCurrentDesktop(window)) {
            const std::uint32_t desktop = find(window)->desktop.value_or(allDesktops);
            x.sendToRoot(x.root(), "_NET_CURRENT_DESKTOP", {desktop, x.serverTime(), 0, 0, 0});
        }
        x.sendToRoot(window, "_NET_ACTIVE_WINDOW", {fromPager, x.serverTime(), 0, 0, 0});
        return;
    }
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    for (const auto cookie :
         {xcb_map_window_checked(x.xcb(), window),
          xcb_configure_window_checked(x.xcb(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above),
          xcb_set_input_focus_checked(x.xcb(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME)}) {
        xcb_discard_reply(x.xcb(), cookie.sequence);
    }
    x.flush();
}

Subscription ClientWindows::onActiveChange(std::function<void()> handler) {
    return activeHandlers.add(std::move(handler));
}

Subscription ClientWindows::onListChange(std::function<void()> handler) {
    return listHandlers.add(std::move(handler));
}

Subscription ClientWindows::onWindowChange(std::function<void(xcb_window_t, Change)> handler) {
    return windowHandlers.add(std::move(handler));
}

void ClientWindows::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
        case XCB_PROPERTY_NOTIFY:
            return handleProperty(reinterpret_cast<const xcb_property_notify_event_t&>(event));
        case XCB_DESTROY_NOTIFY: {
            const auto window = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
            const bool wasKnown = known.erase(window) > 0;
            std::erase(activity, window);
            if (wasKnown) listChanged();
            if (wasKnown && window == activeWindow) setActive(readActive());
            return;
        }
        case XCB_MAP_NOTIFY:
        case XCB_UNMAP_NOTIFY:
        case XCB_REPARENT_NOTIFY:
            if (!manager.isRunning()) listChanged();
            return;
        case XCB_FOCUS_IN:
        case XCB_FOCUS_OUT:
            if (!manager.isRunning()) setActive(readActive());
            return;
        default:
            return;
    }
}

void ClientWindows::handleProperty(const xcb_property_notify_event_t& change) {
    if (change.window == x.root()) {
        if (change.atom == atoms->clientList) listChanged();
        if (change.atom == atoms->activeWindow) {
            // It may have changed there and back since; whoever counts on the difference is told.
            remember(readActive());
            activeHandlers.notify();
        }
        return;
    }
    const bool isState = isOneOf(change.atom, atoms->wmState, atoms->netState, atoms->desktop);
    const bool isIdentity =
        isOneOf(change.atom, atoms->type, atoms->gtkApplicationId, atoms->kdeDesktopFile,
                atoms->pid, xcb_atom_t{XCB_ATOM_WM_CLASS}, xcb_atom_t{XCB_ATOM_WM_TRANSIENT_FOR});
    if (!isState && !isIdentity) return;
    if (known.erase(change.window) == 0) return;
    windowHandlers.notify(change.window, isIdentity ? Change::identity : Change::state);
}

void ClientWindows::managerChanged() {
    if (!manager.isRunning()) x.selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    tellsHidden = manager.supports("_NET_WM_STATE_HIDDEN");
    known.clear();
    listChanged();
    setActive(readActive());
}

void ClientWindows::listChanged() {
    listIsFresh = false;
    // Events of the focus are told by the windows themselves, so new ones must be known at once.
    if (!manager.isRunning()) setActive(readActive());
    listHandlers.notify();
}

void ClientWindows::setActive(xcb_window_t window) {
    if (window == activeWindow) return;
    remember(window);
    activeHandlers.notify();
}

void ClientWindows::remember(xcb_window_t active) {
    activeWindow = active;
    if (active == XCB_WINDOW_NONE) return;
    std::erase(activity, active);
    activity.insert(activity.begin(), active);
}

xcb_window_t ClientWindows::readActive() {
    if (!manager.isRunning()) return focusedClient();
    const auto windows = x.property32(x.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW);
    return windows.empty() || windows.front() == x.root() ? xcb_window_t{XCB_WINDOW_NONE}
                                                          : windows.front();
}

/// The window of the list that has the input focus or holds the one that has it.
xcb_window_t ClientWindows::focusedClient() {
    const Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(x.xcb(), xcb_get_input_focus(x.xcb()), nullptr));
    if (!focus || focus->focus <= XCB_INPUT_FOCUS_POINTER_ROOT) return XCB_WINDOW_NONE;
    updateList();
    for (xcb_window_t window = focus->focus; window != XCB_WINDOW_NONE && window != x.root();) {
        if (std::find(list.begin(), list.end(), window) != list.end()) return window;
        const auto tree = takeTree(x, xcb_query_tree(x.xcb(), window));
        window = tree ? tree->parent : xcb_window_t{XCB_WINDOW_NONE};
    }
    return XCB_WINDOW_NONE;
}

void ClientWindows::updateList() {
    if (!listIsFresh) {
        listIsFresh = true;
        list = manager.isRunning() ? x.property32(x.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW)
                                   : windowsOnScreen();
    }
    load(list);
}

/// The children of the root, or what a window manager without a list has put into them, as far as
/// they are on the screen or say that they are managed.
std::vector<xcb_window_t> ClientWindows::windowsOnScreen() {
    struct Candidate {
        xcb_window_t window;
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_property_cookie_t state;
        xcb_query_tree_cookie_t tree;
    };
    const auto ask = [this](const std::vector<xcb_window_t>& windows) {
        std::vector<Candidate> candidates;
        candidates.reserve(windows.size());
        for (const xcb_window_t window : windows) {
            candidates.push_back(
                {window, xcb_get_window_attributes(x.xcb(), window),
                 xcb_get_property(x.xcb(), 0, window, atoms->wmState, atoms->wmState, 0, 2),
                 xcb_query_tree(x.xcb(), window)});
        }
        return candidates;
    };
    std::vector<xcb_window_t> result;
    const auto collect = [&](const auto& self, const std::vector<xcb_window_t>& windows,
                             int depth) -> bool {
        bool anyManaged = false;
        for (const Candidate& candidate : ask(windows)) {
            const Reply<xcb_get_window_attributes_reply_t> attributes(
                xcb_get_window_attributes_reply(x.xcb(), candidate.attributes, nullptr));
            const Reply<xcb_get_property_reply_t> state(
                xcb_get_property_reply(x.xcb(), candidate.state, nullptr));
            const auto tree = takeTree(x, candidate.tree);
            if (!attributes || attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY) continue;
            const auto states = numbersIn(state.get(), atoms->wmState);
            if (!states.empty() && states.front() != 0) {
                result.push_back(candidate.window);
                anyManaged = true;
            } else if (depth < 2 && self(self, childrenIn(tree.get()), depth + 1)) {
                anyManaged = true;
            } else if (depth == 0 && attributes->override_redirect == 0 &&
                       attributes->map_state == XCB_MAP_STATE_VIEWABLE) {
                result.push_back(candidate.window);
            }
        }
        return anyManaged;
    };
    const auto tree = takeTree(x, xcb_query_tree(x.xcb(), x.root()));
    collect(collect, childrenIn(tree.get()), 0);
    return result;
}

void ClientWindows::load(const std::vector<xcb_window_t>& windows) {
    std::vector<std::pair<xcb_window_t, Questions>> asked;
    std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    if (!manager.isRunning()) mask |= XCB_EVENT_MASK_FOCUS_CHANGE;
    for (const xcb_window_t window : windows) {
        if (known.contains(window)) continue;
        // Before it is asked, or a change in between would go unnoticed.
        x.select(window, mask);
        asked.emplace_back(window, ask(window));
    }
    for (const auto& [window, questions] : asked) {
        if (auto client = take(questions)) known.insert_or_assign(window, std::move(*client));
    }
}

ClientWindows::Questions ClientWindows::ask(xcb_window_t window) const {
    const auto property = [&](xcb_atom_t name, std::uint32_t length) {
        return xcb_get_property(x.xcb(), 0, window, name, XCB_ATOM_ANY, 0, length);
    };
    Questions questions{property(atoms->type, longestList),
                        property(XCB_ATOM_WM_TRANSIENT_FOR, 1),
                        property(atoms->netState, longestList),
                        property(atoms->wmState, 1),
                        property(XCB_ATOM_WM_CLASS, longestText),
                        property(atoms->gtkApplicationId, longestText),
                        property(atoms->kdeDesktopFile, longestText),
                        property(atoms->pid, 1),
                        property(atoms->desktop, 1),
                        std::nullopt};
    if (tellsPids) {
        const xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        questions.owner = xcb_res_query_client_ids(x.xcb(), 1, &wanted);
    }
    return questions;
}

std::optional<ClientWindow> ClientWindows::take(const Questions& questions) const {
    using Property = Reply<xcb_get_property_reply_t>;
    const auto reply = [this](xcb_get_property_cookie_t cookie) {
        return Property(xcb_get_property_reply(x.xcb(), cookie, nullptr));
    };
    const Property type = reply(questions.type);
    const Property transientFor = reply(questions.transientFor);
    const Property netState = reply(questions.netState);
    const Property wmState = reply(questions.wmState);
    const Property classes = reply(questions.classes);
    const Property gtkApplicationId = reply(questions.gtkApplicationId);
    const Property kdeDesktopFile = reply(questions.kdeDesktopFile);
    const Property pid = reply(questions.pid);
    const Property desktop = reply(questions.desktop);
    Reply<xcb_res_query_client_ids_reply_t> owner;
    if (questions.owner) {
        owner.reset(xcb_res_query_client_ids_reply(x.xcb(), *questions.owner, nullptr));
    }
    if (!type || !desktop) return std::nullopt;

    ClientWindow client;
    const auto parents = numbersIn(transientFor.get(), XCB_ATOM_WINDOW);
    if (!parents.empty() && parents.front() != x.root()) client.transientFor = parents.front();
    const auto kind = atoms->kindOf(numbersIn(type.get(), XCB_ATOM_ATOM));
    client.kind =
        kind.value_or(client.transientFor == XCB_WINDOW_NONE ? ClientWindow::Kind::normal
                                                             : ClientWindow::Kind::dialog);
    const auto states = numbersIn(netState.get(), XCB_ATOM_ATOM);
    const auto has = [&](xcb_atom_t state) {
        return std::find(states.begin(), states.end(), state) != states.end();
    };
    client.isModal = has(atoms->modal);
    const auto state = numbersIn(wmState.get(), atoms->wmState);
    // WM_STATE is iconic in many places for windows on other workspaces too.
    client.isIconic = tellsHidden ? has(atoms->hidden) && !has(atoms->shaded)
                                  : !state.empty() && state.front() == iconicState;
    const auto desktops = numbersIn(desktop.get(), XCB_ATOM_CARDINAL);
    if (!desktops.empty()) client.desktop = desktops.front();

    const std::string both = textIn(classes.get());
    client.instanceName = firstPart(both);
    if (client.instanceName.size() < both.size()) {
        client.className = firstPart(both.substr(client.instanceName.size() + 1));
    }
    client.gtkApplicationId = firstPart(textIn(gtkApplicationId.get()));
    client.kdeDesktopFile = firstPart(textIn(kdeDesktopFile.get()));

    // The server's own knowledge first: what a client says of itself is wrong in a pid namespace.
    if (owner) {
        for (auto ids = xcb_res_query_client_ids_ids_iterator(owner.get()); ids.rem > 0;
             xcb_res_client_id_value_next(&ids)) {
            if ((ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) == 0) continue;
            if (xcb_res_client_id_value_value_length(ids.data) < 1) continue;
            client.pid = static_cast<std::int32_t>(*xcb_res_client_id_value_value(ids.data));
        }
    }
    const auto claimed = numbersIn(pid.get(), XCB_ATOM_CARDINAL);
    if (client.pid <= 0 && !claimed.empty())
        client.pid = static_cast<std::int32_t>(claimed.front());
    if (client.pid < 0) client.pid = 0;
    return client;
}

std::vector<xcb_window_t> ClientWindows::byStacking(
    const std::vector<xcb_window_t>& windows) const {
    struct Climb {
        xcb_window_t window;
        xcb_window_t ancestor;
        bool isAtTop = false;
    };
    std::vector<Climb> climbs;
    for (const xcb_window_t window : windows) climbs.push_back({window, window});
    const xcb_query_tree_cookie_t rootTree = xcb_query_tree(x.xcb(), x.root());
    // One round trip a level; no window manager nests its frames nearly as deep.
    for (int level = 0; level < 16; ++level) {
        std::vector<std::pair<Climb*, xcb_query_tree_cookie_t>> asked;
        for (Climb& climb : climbs) {
            if (!climb.isAtTop) asked.emplace_back(&climb, xcb_query_tree(x.xcb(), climb.ancestor));
        }
        if (asked.empty()) break;
        for (const auto& [climb, cookie] : asked) {
            const auto tree = takeTree(x, cookie);
            climb->isAtTop = !tree || tree->parent == x.root();
            if (!climb->isAtTop) climb->ancestor = tree->parent;
        }
    }
    const auto rootReply = takeTree(x, rootTree);
    const auto children = childrenIn(rootReply.get());
    std::vector<xcb_window_t> result;
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        for (const Climb& climb : climbs) {
            if (climb.isAtTop && climb.ancestor == *child) result.push_back(climb.window);
        }
    }
    return result;
}

}  // namespace quorvel::native
