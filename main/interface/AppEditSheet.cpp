#include "main/interface/AppEditSheet.hpp"

#include <QEvent>
#include <algorithm>
#include <utility>

#include "main/interface/AppNames.hpp"
#include "main/interface/UserChoice.hpp"
#include "main/settings/TextRecords.hpp"

namespace quorvel {
namespace {

QString notSaved() {
    return QStringLiteral("The settings could not be saved.");
}

/// Segments of the control for the edge and of the one for its half.
struct EdgeSegments {
    int state = 0;
    int half = 0;
    bool hasHalves = false;
};

EdgeSegments segmentsFor(std::optional<TuckEdge> edge) {
    if (!edge) return {};
    switch (*edge) {
        case TuckEdge::left:
            return {1, 0, true};
        case TuckEdge::right:
            return {2, 0, true};
        case TuckEdge::bottom:
            return {3, 0, false};
        case TuckEdge::topLeft:
            return {1, 1, true};
        case TuckEdge::bottomLeft:
            return {1, 2, true};
        case TuckEdge::topRight:
            return {2, 1, true};
        case TuckEdge::bottomRight:
            return {2, 2, true};
    }
    return {};
}

std::string edgeTextFor(int state, int half) {
    const std::string side = state == 1 ? "left" : "right";
    if (state == 3) return "bottom";
    if (state != 1 && state != 2) return "none";
    if (half == 1) return "top-" + side;
    if (half == 2) return "bottom-" + side;
    return side;
}

std::string_view edgeTextFor(Side side) {
    switch (side) {
        case Side::left:
            return "left";
        case Side::right:
            return "right";
        case Side::bottom:
            break;
    }
    return "bottom";
}

}  // namespace

AppEditSheet::AppEditSheet(Settings settings, std::string appPath, std::string displayRef,
                           Arrival arrival, SettingsHost& host, Platform platform, AppIcons& icons,
                           std::function<void()> onDone, QWidget* parent)
    : QDialog(parent),
      settings(std::move(settings)),
      appPath(std::move(appPath)),
      displayRef(std::move(displayRef)),
      host(host),
      platform(platform),
      icons(icons),
      onDone(std::move(onDone)) {
    const auto binding = matchingBinding();
    liveHotKeyAtOpen = binding ? binding->hotKey : "none";
    loadView();
    refresh();
    if (const auto* assign = std::get_if<Arrival::Assign>(&arrival.how)) claim(assign->slot);
}

void AppEditSheet::claim(const Slot& slot) {
    if (displayRef.empty()) return;
    if (const auto* corner = std::get_if<HotZoneCorner>(&slot.position)) {
        writePlacement(std::string(rawValue(*corner)), std::nullopt);
    } else if (const auto* side = std::get_if<Side>(&slot.position)) {
        writePlacement(std::nullopt, std::string(edgeTextFor(*side)));
    } else {
        writePlacement(std::nullopt, "bottom");
    }
    refresh();
}

QString AppEditSheet::title() const {
    std::string title = appName(platform.catalog, appPath);
    if (const auto ref = DisplayRef::parse(displayRef)) {
        if (const auto display = Displays::resolve(*ref, Displays::attached(platform.screens))) {
            title += " on " + display->name;
        } else {
            const auto known = settings.knownDisplays();
            const auto found = known.find(ref->raw);
            if (found != known.end()) title += " on " + found->second;
        }
    }
    return QString::fromStdString(title);
}

std::optional<Placement> AppEditSheet::placementHere() const {
    const auto ref = DisplayRef::parse(displayRef);
    if (!ref) return std::nullopt;
    auto display = Displays::resolve(*ref, Displays::attached(platform.screens));
    if (!display) {
        display.emplace();
        display->ref = *ref;
        display->isBuiltin = ref->raw == "builtin";
    }
    return Placement::matching(appPath, *display, settings.placements());
}

std::optional<AppBinding> AppEditSheet::matchingBinding() const {
    for (const AppBinding& binding : settings.appBindings()) {
        if (binding.appPath == appPath) return binding;
    }
    return std::nullopt;
}

std::string AppEditSheet::anyPlacedEdgeRaw() const {
    std::optional<TuckEdge> edge;
    if (displayRef.empty()) {
        for (const Placement& placement : settings.placements()) {
            if (placement.appPath != appPath) continue;
            const auto placed = TuckEdge::parse(placement.tuckEdge);
            if (!placed) continue;
            edge = placed;
            if (*placed != TuckEdge::bottom) break;
        }
    } else if (const auto placement = placementHere()) {
        edge = TuckEdge::parse(placement->tuckEdge);
    }
    return edge ? std::string(edge->rawValue()) : "none";
}

void AppEditSheet::refresh() {
    constexpr int iconSize = 28;
    const QIcon shown = icons.iconFor(appPath);
    icon->setPixmap(shown.pixmap(QSize(iconSize, iconSize), devicePixelRatioF()));
    const QString described =
        icons.isInstalled(appPath) ? QString() : QStringLiteral("Application not found");
    icon->setAccessibleName(described);
    icon->setToolTip(described);

    const auto binding = matchingBinding();
    const auto spec = HotKeySpec::parse(binding ? binding->hotKey : "none");
    recorder->setDisplayText(spec ? QString::fromStdString(spec->display())
                                  : QStringLiteral("None"));

    if (!displayRef.empty()) {
        const auto placement = placementHere();
        const auto corner = placement ? parseHotZoneCorner(placement->corner) : std::nullopt;
        // One button of the group is always on; switching one on switches the others off.
        if (!corner) showSwitched(*cornerOff, true);
        for (std::size_t i = 0; i < cornerButtons.size(); ++i) {
            if (corner == cornerGridOrder[i]) showSwitched(*cornerButtons[i], true);
        }
        letTabReachTheChosen(cornerChoice);
        const EdgeSegments segments =
            segmentsFor(placement ? TuckEdge::parse(placement->tuckEdge) : std::nullopt);
        edgeState->setSelectedIndex(segments.state);
        edgeHalfControl->setSelectedIndex(segments.half);
        edgeHalfControl->setEnabled(segments.hasHalves);
    }

    const std::string edgeRaw = anyPlacedEdgeRaw();
    const bool hasEdge = TuckEdge::parse(edgeRaw).has_value();
    autoTuckCheckbox->setEnabled(hasEdge);
    showSwitched(*autoTuckCheckbox, hasEdge && binding && saysYes(binding->autoTuck));
    tuckNowButton->setEnabled(hasEdge);
    tuckNowButton->setText(host.isTucked(appPath, edgeRaw) ? QStringLiteral("Untuck Now")
                                                           : QStringLiteral("Tuck Now"));
}

bool AppEditSheet::saved(bool wasStored) {
    if (!wasStored) {
        status->setText(notSaved());
    } else if (status->text() == notSaved()) {
        status->clear();
    }
    return wasStored;
}

bool AppEditSheet::writePlacement(const std::optional<std::string>& corner,
                                  const std::optional<std::string>& tuckEdge) {
    if (displayRef.empty()) return true;
    std::vector<Placement> placements = settings.placements();
    auto found = std::find_if(placements.begin(), placements.end(), [this](const Placement& one) {
        return one.appPath == appPath && one.display == displayRef;
    });
    if (found == placements.end()) {
        found = placements.insert(placements.end(), {.appPath = appPath, .display = displayRef});
    }
    if (corner) found->corner = *corner;
    if (tuckEdge) found->tuckEdge = *tuckEdge;
    return saved(settings.setPlacements(placements));
}

bool AppEditSheet::writeBinding(const std::function<void(AppBinding&)>& change) {
    std::vector<AppBinding> bindings = settings.appBindings();
    const auto found =
        std::find_if(bindings.begin(), bindings.end(),
                     [this](const AppBinding& binding) { return binding.appPath == appPath; });
    if (found == bindings.end()) return true;
    change(*found);
    return saved(settings.setAppBindings(bindings));
}

void AppEditSheet::cornerOffChosen() {
    writePlacement("none", std::nullopt);
    refresh();
}

void AppEditSheet::cornerButtonChanged(HotZoneCorner corner) {
    writePlacement(std::string(rawValue(corner)), std::nullopt);
    refresh();
}

void AppEditSheet::edgeStateChanged() {
    writePlacement(std::nullopt,
                   edgeTextFor(edgeState->selectedIndex(), edgeHalfControl->selectedIndex()));
    refresh();
}

void AppEditSheet::autoTuckChanged(bool isOn) {
    if (applyAutoTuck(isOn)) {
        status->clear();
    } else {
        refresh();
    }
}

bool AppEditSheet::applyAutoTuck(bool isOn) {
    return writeBinding(
        [isOn](AppBinding& binding) { binding.autoTuck = isOn ? "true" : "false"; });
}

void AppEditSheet::tuckNowTapped() {
    const auto edge = TuckEdge::parse(anyPlacedEdgeRaw());
    if (!edge) {
        status->setText(QStringLiteral("Set a tuck edge first."));
        return;
    }
    for (const RunningApplication& running : platform.applications.runningApplications()) {
        if (running.bundlePath != appPath) continue;
        host.toggleTuck(appPath, *edge);
        status->clear();
        refresh();
        return;
    }
    status->setText(QString::fromStdString(appName(platform.catalog, appPath)) +
                    QStringLiteral(" is not running."));
}

void AppEditSheet::capture(const ShortcutCapture& capture) {
    if (const auto* spec = std::get_if<HotKeySpec>(&capture.outcome)) {
        captured(*spec);
    } else if (std::holds_alternative<ShortcutCapture::NeedsModifier>(capture.outcome)) {
        status->setText(QStringLiteral("Add a modifier — ⌘, ⌃, ⌥ or ⇧."));
    } else if (std::holds_alternative<ShortcutCapture::UnsupportedKey>(capture.outcome)) {
        status->setText(QStringLiteral("That key can't be used as a shortcut."));
    } else {
        refresh();
    }
}

void AppEditSheet::captured(const HotKeySpec& spec) {
    const std::string text = spec.canonicalText();
    // The program itself holds what the application has.
    if (text != liveHotKeyAtOpen && !isFree(spec)) {
        status->setText(
            QString::fromStdString(spec.display() + " is already used by another app."));
        refresh();
        return;
    }
    if (writeBinding([&text](AppBinding& binding) { binding.hotKey = text; })) status->clear();
    refresh();
}

bool AppEditSheet::isFree(const HotKeySpec& spec) const {
    const auto code = virtualKeyCodes().find(spec.keyName);
    const HotKeyRegistration trial =
        platform.hotKeys.registerHotKey(code == virtualKeyCodes().end() ? 0 : code->second,
                                        spec.carbonMask(), {hotKeyProbeSignature, 1});
    if (trial.ref) platform.hotKeys.unregisterHotKey(*trial.ref);
    return trial.status == 0;
}

void AppEditSheet::done(int result) {
    QDialog::done(result);
    // Once; and it may be the end of this sheet.
    if (const auto act = std::exchange(onDone, nullptr)) act();
}

bool AppEditSheet::event(QEvent* event) {
    const QEvent::Type type = event->type();
    const bool isHandled = QDialog::event(event);
    // Any other event may have been the end of this sheet.
    if (type == QEvent::LayoutRequest || type == QEvent::FontChange) {
        if (doneButton != nullptr) fitHeight();
    } else if (type == QEvent::ApplicationPaletteChange && doneButton != nullptr) {
        // The icon of what is not installed is drawn in a colour of the palette.
        refresh();
    }
    return isHandled;
}

}  // namespace quorvel
