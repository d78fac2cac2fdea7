#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/x11/ChildProcess.hpp"
#include "tests/support/x11/XSession.hpp"

namespace quorvel::test {

enum class PanelKind { trayer, tint2, xfce4Panel, lxqtPanel };

const std::vector<PanelKind>& allPanels();
std::string nameOf(PanelKind kind);
/// How GoogleTest shows it.
void PrintTo(PanelKind kind, std::ostream* out);
/// Whether its items are StatusNotifierItems rather than windows in a tray.
bool takesItemsOverTheBus(PanelKind kind);

/// A real panel at an edge of the screen that shows nothing but status items.
class Panel {
public:
    enum class Edge { top, bottom };

    /// Only a trayer can be at the bottom.
    Panel(PanelKind kind, XSession& session, Edge edge = Edge::top);

    /// In front of a menu or a window that covers it there is nothing to be seen of the item.
    std::optional<Rect> item() const;
    /// The item has come to its place and stands still there. Throws when it does not.
    Rect waitForItem() const;
    bool waitUntilItemIsGone() const;

    /// At once, as by a crash.
    void kill() { process.end(); }

private:
    XSession& session;
    PanelKind kind;
    Rect area;
    ChildProcess process;
};

}  // namespace quorvel::test
