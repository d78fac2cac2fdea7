#include "tests/support/x11/Panel.hpp"

#include <ostream>
#include <stdexcept>

namespace quorvel::test {
namespace {

/// Of the icon's title bar, in whatever size it is shown.
constexpr std::uint32_t orange = 0xFA7412;
constexpr int tolerance = 12;
constexpr double panelHeight = 32;
constexpr double screenHeight = 800;

constexpr std::string_view tint2Settings = R"(panel_items = FS
panel_size = 100% 32
panel_position = top center horizontal
panel_background_id = 1
systray_icon_size = 22
systray_padding = 4 4 4
rounded = 0
border_width = 0
background_color = #202020 100
)";

constexpr std::string_view xfceSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
 <property name="configver" type="int" value="2"/>
 <property name="panels" type="array">
  <value type="int" value="1"/>
  <property name="panel-1" type="empty">
   <property name="position" type="string" value="p=6;x=0;y=0"/>
   <property name="length" type="uint" value="100"/>
   <property name="position-locked" type="bool" value="true"/>
   <property name="size" type="uint" value="32"/>
   <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
  </property>
 </property>
 <property name="plugins" type="empty">
  <property name="plugin-1" type="string" value="systray"/>
 </property>
</channel>
)";

constexpr std::string_view lxqtSettings = R"([General]
panels=panel1
[panel1]
plugins=statusnotifier
position=Top
panelSize=32
width=100
width-percent=true
alignment=1
[statusnotifier]
type=statusnotifier
alignment=Right
)";

std::vector<std::string> commandOf(PanelKind kind, Panel::Edge edge, const ScratchFolder& folder) {
    switch (kind) {
        case PanelKind::trayer:
            return {"trayer",   "--edge",      edge == Panel::Edge::top ? "top" : "bottom",
                    "--align",  "right",       "--width",
                    "100",      "--widthtype", "pixel",
                    "--height", "32"};
        case PanelKind::tint2:
            return {"tint2", "-c", folder.write("config/tint2/tint2rc", tint2Settings)};
        case PanelKind::xfce4Panel:
            folder.write("config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", xfceSettings);
            return {"xfce4-panel", "--disable-wm-check"};
        case PanelKind::lxqtPanel:
            folder.write("config/lxqt/panel.conf", lxqtSettings);
            return {"lxqt-panel"};
    }
    return {};
}

}  // namespace

const std::vector<PanelKind>& allPanels() {
    static const std::vector<PanelKind> kinds{PanelKind::trayer, PanelKind::tint2,
                                              PanelKind::xfce4Panel, PanelKind::lxqtPanel};
    return kinds;
}

std::string nameOf(PanelKind kind) {
    switch (kind) {
        case PanelKind::trayer:
            return "trayer";
        case PanelKind::tint2:
            return "tint2";
        case PanelKind::xfce4Panel:
            return "xfce4_panel";
        case PanelKind::lxqtPanel:
            return "lxqt_panel";
    }
    return {};
}

void PrintTo(PanelKind kind, std::ostream* out) {
    *out << nameOf(kind);
}

bool takesItemsOverTheBus(PanelKind kind) {
    return kind == PanelKind::xfce4Panel || kind == PanelKind::lxqtPanel;
}

Panel::Panel(PanelKind kind, XSession& session, Edge edge)
    : session(session),
      kind(kind),
      area{0, edge == Edge::top ? 0 : screenHeight - panelHeight, 1e6, panelHeight},
      process(session.start(commandOf(kind, edge, session.folder()))) {}

std::optional<Rect> Panel::item() const {
    const auto seen = session.probe().boundsOfColoursNear(orange, tolerance, area);
    // One pixel of such a colour may be anything.
    return seen && seen->width >= 4 ? seen : std::nullopt;
}

Rect Panel::waitForItem() const {
    std::optional<Rect> last;
    int same = 0;
    const bool isThere = waitUntil([&] {
        const auto now = item();
        same = now && now == last ? same + 1 : 0;
        last = now;
        return same >= 5;
    });
    if (!isThere) throw std::runtime_error("no item comes up in " + nameOf(kind));
    return *last;
}

bool Panel::waitUntilItemIsGone() const {
    return waitUntil([&] { return !item(); });
}

}  // namespace quorvel::test
