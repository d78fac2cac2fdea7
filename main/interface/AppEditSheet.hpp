#pragma once

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "main/interface/AppIcons.hpp"
#include "main/interface/SegmentedControl.hpp"
#include "main/interface/ShortcutRecorderView.hpp"
#include "main/interface/WrappedLabel.hpp"
#include "main/settings/HotZoneCorner.hpp"
#include "main/settings/Settings.hpp"
#include "main/shell/SettingsHost.hpp"
#include "platform/ApplicationCatalog.hpp"
#include "platform/Applications.hpp"
#include "platform/Screens.hpp"

namespace quorvel {

/// Edits what is stored for one application: with a display its shortcut, its corner and its edge
/// there, without one only the shortcut; and whether it tucks by itself. Each choice is stored at
/// once; there is nothing to take back. What it shows is always what is stored.
class AppEditSheet final : public QDialog {
public:
    /// How the sheet was reached.
    struct Arrival {
        struct Edit {
            std::optional<Slot> slot;  ///< the one that was clicked, if any
        };
        struct Assign {
            Slot slot;  ///< free so far; the sheet claims it when it opens
        };

        std::variant<Edit, Assign> how;

        static Arrival edit(std::optional<Slot> slot = std::nullopt) { return {Edit{slot}}; }
        static Arrival assign(Slot slot) { return {Assign{slot}}; }
    };

    /// What it uses of the desktop.
    struct Platform {
        const Screens& screens;
        HotKeys& hotKeys;
        const Applications& applications;
        const ApplicationCatalog& catalog;
    };

    /// The trial registration of a shortcut: 'AES1'.
    static constexpr std::uint32_t hotKeyProbeSignature = 0x41455331;

    /// An empty display reference stands for none. All references outlive the sheet. `onDone` is
    /// called exactly once when the sheet has been closed, in whatever way; it may `deleteLater`
    /// the sheet. It is not called for a sheet that is destroyed while it is open.
    AppEditSheet(Settings settings, std::string appPath, std::string displayRef, Arrival arrival,
                 SettingsHost& host, Platform platform, AppIcons& icons,
                 std::function<void()> onDone, QWidget* parent = nullptr);

    /// Shows what is stored now, for when it was changed elsewhere.
    void refresh();

    void done(int result) override;

protected:
    bool event(QEvent* event) override;

private:
    static constexpr std::array cornerGridOrder{HotZoneCorner::topLeft, HotZoneCorner::topRight,
                                                HotZoneCorner::bottomLeft,
                                                HotZoneCorner::bottomRight};

    void loadView();
    QLayout* header();
    QLayout* settingsGrid();
    QLayout* shortcutRow();
    QLayout* cornerRow();
    QLayout* edgeRow();
    QLayout* autoTuckRow();
    QLayout* buttonRow();
    void fitHeight();
    void claim(const Slot& slot);

    QString title() const;
    std::optional<Placement> placementHere() const;
    std::optional<AppBinding> matchingBinding() const;
    std::string anyPlacedEdgeRaw() const;

    bool writePlacement(const std::optional<std::string>& corner,
                        const std::optional<std::string>& tuckEdge);
    /// Changes the stored binding, if there is one.
    bool writeBinding(const std::function<void(AppBinding&)>& change);
    bool saved(bool wasStored);

    void cornerOffChosen();
    void cornerButtonChanged(HotZoneCorner corner);
    void edgeStateChanged();
    void autoTuckChanged(bool isOn);
    bool applyAutoTuck(bool isOn);
    void tuckNowTapped();
    void finish() { done(QDialog::Accepted); }

    void capture(const ShortcutCapture& capture);
    void captured(const HotKeySpec& spec);
    bool isFree(const HotKeySpec& spec) const;

    Settings settings;
    std::string appPath;
    std::string displayRef;
    SettingsHost& host;
    Platform platform;
    AppIcons& icons;
    std::string liveHotKeyAtOpen;
    std::function<void()> onDone;

    QLabel* icon = nullptr;
    ShortcutRecorderView* recorder = nullptr;
    QButtonGroup cornerChoice;
    QRadioButton* cornerOff = nullptr;  ///< this and all below up to the edges: only with a display
    std::array<QRadioButton*, 4> cornerButtons{};  ///< in `cornerGridOrder`
    SegmentedControl* edgeState = nullptr;
    SegmentedControl* edgeHalfControl = nullptr;
    QCheckBox* autoTuckCheckbox = nullptr;
    QPushButton* tuckNowButton = nullptr;
    WrappedLabel* status = nullptr;
    QPushButton* doneButton = nullptr;
};

}  // namespace quorvel
