#pragma once

#include <functional>
#include <list>
#include <utility>
#include <vector>

#include "platform/Applications.hpp"
#include "platform/Subscription.hpp"
#include "platform/simulated/SimulatedWindow.hpp"

namespace quorvel {

/// What the user and the other programs see: the windows of all applications, which of them is
/// active, and what people do to them. Everything happens at once and calls nobody but
/// `activeChanged`.
class SimulatedWindowServer {
public:
    /// This program itself, whose windows are in here like all others.
    std::string ownPath = "/usr/share/applications/com.tessivane.quorvel.desktop";
    std::int32_t ownProcessIdentifier = 1000;

    /// Called whenever another window, or none, has become the active one.
    std::function<void()> activeChanged;

    /// The window has moved, changed its size, or gone; not for what the program itself did to it.
    [[nodiscard]] Subscription onChange(std::function<void(WindowElement)> handler) {
        return changes.add(std::move(handler));
    }

    // Windows come and go ----------------------------------------------------------------------

    struct Opening {
        std::optional<std::string> bundlePath{};
        std::int32_t processIdentifier = 0;  ///< 0 for a new one, or that of its application
        Rect frameAX{100, 100, 800, 600};
        std::optional<WindowElement> transientFor{};
        bool isModal = false;
        bool activates = true;
    };
    /// In front of all others, and active unless told otherwise.
    WindowElement open(Opening opening);
    void close(WindowElement window);
    /// The process dies, and all its windows with it.
    void kill(std::int32_t processIdentifier);
    /// All windows of an application close.
    void quit(const std::string& bundlePath);

    // What the user does -----------------------------------------------------------------------

    void activate(WindowElement window);  ///< shows it first if it is iconic
    void deactivateAll();                 ///< no window is active, as while a launcher is up
    void iconify(WindowElement window);
    void deiconify(WindowElement window);
    void drag(WindowElement window, Point originAX);
    void resize(WindowElement window, Size size);
    void raise(WindowElement window);

    // What can be seen -------------------------------------------------------------------------

    SimulatedWindow* find(WindowElement window);
    const SimulatedWindow* find(WindowElement window) const;
    /// Throws when there is no such window.
    SimulatedWindow& window(WindowElement window);
    std::optional<WindowElement> active() const { return activeWindow; }
    /// From the front to the back, iconic ones too.
    std::vector<const SimulatedWindow*> stacked() const;
    /// In the order in which they were opened.
    std::vector<SimulatedWindow*> all();
    std::vector<const SimulatedWindow*> all() const;
    /// Those of one application: by its path, or by its process when it has none.
    std::vector<SimulatedWindow*> windowsOf(const std::optional<std::string>& bundlePath,
                                            std::int32_t processIdentifier);

    /// Of some windows the one used last, else the frontmost; iconic ones only if asked for.
    template <class Windows>
    static auto mostRecent(const Windows& among, bool evenIconic) {
        typename Windows::value_type best = nullptr;
        for (const auto candidate : among) {
            if (candidate->isIconic && !evenIconic) continue;
            if (!best || rank(*candidate) > rank(*best)) best = candidate;
        }
        return best;
    }

    std::int32_t newProcessIdentifier() { return nextProcessIdentifier++; }

private:
    static std::pair<std::uint64_t, std::uint64_t> rank(const SimulatedWindow& window) {
        return {window.lastActive, window.stacking};
    }
    void setActive(std::optional<WindowElement> window);
    void activateNext();
    template <class Condition>
    void remove(Condition condition);

    std::list<SimulatedWindow> windows;
    std::optional<WindowElement> activeWindow;
    WindowElement nextElement = 1;
    std::uint64_t moment = 1;
    Subscribers<WindowElement> changes;
    std::int32_t nextProcessIdentifier = 2000;
};

}  // namespace quorvel
