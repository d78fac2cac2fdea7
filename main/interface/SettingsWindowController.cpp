#include "main/interface/SettingsWindowController.hpp"

#include <QApplication>
#include <QButtonGroup>
#include <QCursor>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QThread>
#include <algorithm>

#include "main/interface/AppNames.hpp"
#include "main/interface/ApplicationChooser.hpp"
#include "main/interface/DisplayCardView.hpp"
#include "main/interface/RosterLabel.hpp"
#include "main/interface/ScreenDiagramView.hpp"
#include "main/interface/Style.hpp"
#include "main/interface/Symbols.hpp"
#include "main/interface/UserChoice.hpp"
#include "main/settings/SettingsLayout.hpp"
#include "main/settings/TextRecords.hpp"
#include "main/shell/LoginItem.hpp"
#include "main/shortcuts/HotKeySpec.hpp"
#include "platform/Text.hpp"

namespace quorvel {
namespace {

constexpr int leastDwell = 100;
constexpr int greatestDwell = 1500;

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

QString seconds(int milliseconds) {
    return QString::number(milliseconds / 1000.0, 'f', 2) + QStringLiteral(" s");
}

QHBoxLayout* rowLayout(int spacing) {
    auto* const row = new QHBoxLayout;
    row->setContentsMargins({});
    row->setSpacing(spacing);
    return row;
}

QVBoxLayout* columnLayout(int spacing) {
    auto* const column = new QVBoxLayout;
    column->setContentsMargins({});
    column->setSpacing(spacing);
    return column;
}

QWidget* holding(QLayout* layout) {
    auto* const widget = new QWidget;
    widget->setLayout(layout);
    return widget;
}

QLabel* iconLabel(const QIcon& icon, int size) {
    auto* const label = new QLabel;
    label->setPixmap(icon.pixmap(size, size));
    label->setFixedSize(size, size);
    return label;
}

QString spokenName(const QWidget& widget) {
    const auto* const button = dynamic_cast<const QAbstractButton*>(&widget);
    const QString name = widget.accessibleName();
    return name.isEmpty() && button != nullptr ? button->text() : name;
}

}  // namespace

SettingsWindowController::SettingsWindowController(const Desktop& desktop, SettingsHost& controller,
                                                   FrontWindow front)
    : desktop(desktop),
      controller(controller),
      front(std::move(front)),
      settings(desktop.defaults),
      icons(desktop.catalog, desktop.files),
      screenObserver(desktop.screens.onChange([this] { displaysChanged(); })) {}

SettingsWindowController::~SettingsWindowController() = default;

void SettingsWindowController::show() {
    if (!window) buildWindow();
    icons.forget();
    rebuildSections();
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    front.bring(*window);
    desktop.log.line(formatted("Quorvel: settings window shown (%.0fx%.0f, %d sections)",
                               static_cast<double>(window->width()),
                               static_cast<double>(window->height()), sections.size()));
}

void SettingsWindowController::buildWindow() {
    window = std::make_unique<QWidget>();
    window->setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                           Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint |
                           Qt::WindowMaximizeButtonHint);
    window->setWindowTitle(QStringLiteral("Quorvel Settings"));
    window->resize(680, 620);
    window->setMinimumSize(560, 520);
    if (const QScreen* const screen = QApplication::primaryScreen()) {
        QRect place(QPoint(), window->size());
        place.moveCenter(screen->availableGeometry().center());
        window->move(place.topLeft());
    }
    buildSharedControls();
    rebuildSections();
    window->installEventFilter(this);
}

void SettingsWindowController::buildSharedControls() {
    const auto squareButton = [&](const char* name, auto action) {
        auto* const button = new QToolButton(window.get());
        button->setAccessibleName(QString::fromUtf8(name));
        button->setToolTip(QString::fromUtf8(name));
        button->setFixedSize(26, 24);
        button->setFocusPolicy(Qt::StrongFocus);
        connect(button, &QToolButton::clicked, this, action);
        return button;
    };
    addButton = squareButton("Add an app", [this] { addBindingTapped(); });
    removeButton = squareButton("Remove the selected app", [this] { removeSelectedBinding(); });
    colourButtons();

    auto* const column = new QWidget;
    auto* const whole = new QVBoxLayout(column);
    whole->setContentsMargins(18, 16, 18, 16);
    whole->setSpacing(0);
    sectionStack = columnLayout(20);
    whole->addLayout(sectionStack);
    // What the window has to spare is below all of them, not between them.
    whole->addStretch(1);
    scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(column);
    auto* const content = new QVBoxLayout(window.get());
    content->setContentsMargins({});
    content->addWidget(scroll);

    animationPopup = new QComboBox(window.get());
    animationPopup->setAccessibleName(QStringLiteral("Animation"));
    const std::pair<const char*, const char*> animations[] = {{"Slide", "slide"},
                                                              {"Ease Out", "easeout"},
                                                              {"Ease In-Out", "easeinout"},
                                                              {"Spring", "spring"},
                                                              {"Instant", "instant"}};
    for (const auto& [title, value] : animations) {
        animationPopup->addItem(QString::fromUtf8(title), QString::fromUtf8(value));
    }
    connect(animationPopup, &QComboBox::activated, this, [this] { animationChanged(); });
    animationPopup->installEventFilter(this);

    dwellSlider = new QSlider(Qt::Horizontal, window.get());
    dwellSlider->setRange(leastDwell, greatestDwell);
    dwellSlider->setPageStep(100);
    dwellSlider->setSingleStep(10);
    dwellSlider->setFixedWidth(180);
    dwellSlider->setAccessibleName(QStringLiteral("Corner dwell"));
    connect(dwellSlider, &QSlider::valueChanged, this, [this](int value) { dwellChanged(value); });
    dwellSlider->installEventFilter(this);
    dwellValue = Style::label({}, 11, Style::Colour::secondaryLabel);
    dwellValue->setParent(window.get());

    loginCheckbox = new QCheckBox(QStringLiteral("Launch at login"), window.get());
    onSwitched(*loginCheckbox, *this, [this](bool) { loginChanged(); });

    status = new WrappedLabel(2, 11, Style::Colour::red);
    status->setParent(window.get());
    status->hide();
    statusDivider = Style::separator();
    statusDivider->setParent(window.get());
    statusDivider->hide();
    // They stay; all other sections go above them.
    auto* const statusStack = columnLayout(8);
    statusStack->addWidget(statusDivider);
    statusStack->addWidget(status);
    sectionStack->addLayout(statusStack);
}

void SettingsWindowController::colourButtons() {
    const QColor colour = Style::colour(Style::Colour::label, QApplication::palette());
    addButton->setIcon(Symbols::symbol(QStringLiteral("plus"), colour));
    removeButton->setIcon(Symbols::symbol(QStringLiteral("minus"), colour));
}

// The column --------------------------------------------------------------------------------------

void SettingsWindowController::rebuildSections() {
    const std::vector<AppBinding> bindings = settings.appBindings();
    if (selectedBindingIndex && *selectedBindingIndex >= bindings.size()) {
        selectedBindingIndex.reset();
    }
    const auto focused = focusPlace();
    const int scrolledBy = scroll->verticalScrollBar()->value();
    // All is laid out once, and nothing of it is painted before.
    QWidget* const column = scroll->widget();
    column->hide();
    const auto before = std::exchange(sections, {});
    rosterSelectionButtons.clear();

    addSection(appsPane(bindings));
    addCards(bindings);
    addSection(generalPane());
    loadGeneralControls();
    sections.insert(sections.end(), {statusDivider, status});

    // One of them may be what was clicked on just now.
    for (QWidget* const section : before) {
        if (section == status || section == statusDivider) continue;
        section->hide();
        section->deleteLater();
    }
    column->show();
    // Without this they stay when it was no event of the toolkit that has led here.
    desktop.runLoop.async([] {
        if (QThread::currentThread()->loopLevel() > 0) return;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    });
    if (focused) restoreFocus(*focused);
    // What was hidden with the keyboard in it has scrolled to where the keyboard went.
    scroll->verticalScrollBar()->setValue(scrolledBy);
}

void SettingsWindowController::addSection(QWidget* section) {
    sectionStack->insertWidget(sectionStack->count() - 1, section);
    sections.push_back(section);
}

std::vector<QWidget*> SettingsWindowController::tabStops() const {
    std::vector<QWidget*> stops;
    for (const QWidget* const section : sections) {
        for (QWidget* const each : section->findChildren<QWidget*>()) {
            const bool isStop = (each->focusPolicy() & Qt::TabFocus) != 0;
            if (isStop && each->window() == window.get()) stops.push_back(each);
        }
    }
    return stops;
}

std::optional<SettingsWindowController::FocusPlace> SettingsWindowController::focusPlace() const {
    const auto stops = tabStops();
    const auto at = std::find(stops.begin(), stops.end(), window->focusWidget());
    if (at == stops.end()) return std::nullopt;
    FocusPlace place{spokenName(**at), at - stops.begin(), 0, std::nullopt};
    place.occurrence = std::count_if(
        stops.begin(), at, [&](const QWidget* each) { return spokenName(*each) == place.name; });
    if (const auto* picture = dynamic_cast<const ScreenDiagramView*>(*at)) {
        place.slot = picture->currentSlot();
    }
    return place;
}

/// To what has the same name; where that is gone, or off, to what is there now.
void SettingsWindowController::restoreFocus(const FocusPlace& place) {
    const auto stops = tabStops();
    auto at = std::min(place.position, std::ssize(stops) - 1);
    std::ptrdiff_t seen = 0;
    for (std::ptrdiff_t i = 0; i < std::ssize(stops); ++i) {
        if (spokenName(*stops[static_cast<std::size_t>(i)]) != place.name) continue;
        at = i;
        if (seen++ == place.occurrence) break;
    }
    while (at > 0 && !stops[static_cast<std::size_t>(at)]->isEnabled()) --at;
    if (at < 0) return;
    QWidget* const stop = stops[static_cast<std::size_t>(at)];
    if (auto* picture = dynamic_cast<ScreenDiagramView*>(stop); picture != nullptr && place.slot) {
        picture->setCurrentSlot(*place.slot);
    }
    stop->setFocus();
}

QWidget* SettingsWindowController::appsPane(const std::vector<AppBinding>& bindings) {
    QVBoxLayout* const body = columnLayout(6);
    QWidget* const list = holding(body);
    // Arrow keys go from one to the next.
    auto* const selection = new QButtonGroup(list);
    for (std::size_t index = 0; index < bindings.size(); ++index) {
        body->addLayout(rosterRow(bindings[index], index));
        selection->addButton(rosterSelectionButtons.back());
    }
    if (bindings.empty()) {
        body->addWidget(Style::caption(QStringLiteral(
            "No apps yet. Add one, then click a corner or edge on a display below.")));
    }
    QHBoxLayout* const bar = rowLayout(4);
    bar->addWidget(addButton);
    bar->addWidget(removeButton);
    bar->addStretch();
    removeButton->setEnabled(selectedBindingIndex.has_value());
    body->addLayout(bar);
    return titledPane(QStringLiteral("Apps"),
                      QStringLiteral("Each app has one shortcut. Corners and tuck edges are set "
                                     "per display below."),
                      QStringLiteral("app.badge"), list);
}

QLayout* SettingsWindowController::rosterRow(const AppBinding& app, std::size_t index) {
    const QString name = text(appName(desktop.catalog, app.appPath));
    QHBoxLayout* const row = rowLayout(8);

    auto* const select = new QRadioButton;
    select->setAccessibleName(QStringLiteral("Select ") + name + QStringLiteral(" for removal"));
    showSwitched(*select, selectedBindingIndex == index);
    onChosen(*select, *this, [this, index] { rosterSelectionChanged(index); });
    rosterSelectionButtons.push_back(select);
    row->addWidget(select);

    const auto spec = HotKeySpec::parse(app.hotKey);
    row->addWidget(new RosterLabel({icons.iconFor(app.appPath), name,
                                    spec ? text(spec->display()) : QStringLiteral("None"),
                                    desktop.files.exists(app.appPath)}));
    row->addStretch();

    QPushButton* const edit = Style::smallButton(QStringLiteral("Edit"));
    edit->setAccessibleName(QStringLiteral("Edit ") + name);
    connect(edit, &QPushButton::clicked, this, [this, index] { rosterEditTapped(index); });
    row->addWidget(edit);
    return row;
}

void SettingsWindowController::addCards(const std::vector<AppBinding>& bindings) {
    const auto cards =
        SettingsLayout::cards(AppBinding::validated(bindings).kept, settings.placements(),
                              Displays::attached(desktop.screens), settings.knownDisplays());
    for (const DisplayCard& card : cards) {
        addSection(new DisplayCardView(
            card, [this](const std::string& appPath) { return icons.iconFor(appPath); },
            [this](const std::string& appPath) { return appName(desktop.catalog, appPath); },
            [this, ref = card.ref](const Assignment& assignment) {
                presentSheet(assignment.appPath, ref, AppEditSheet::Arrival::edit(assignment.slot));
            },
            [this](const std::string& ref) { forgetDisplay(ref); },
            [this](const std::string& ref, const Slot& slot) { presentAssignMenu(ref, slot); }));
    }
}

QWidget* SettingsWindowController::generalPane() {
    auto* const grid = new QGridLayout;
    grid->setContentsMargins({});
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(14);
    grid->setColumnStretch(1, 1);
    const auto rowLabel = [&](const char* title, int row) {
        grid->addWidget(Style::label(QString::fromUtf8(title), 13, Style::Colour::secondaryLabel),
                        row, 0, Qt::AlignRight | Qt::AlignTop);
    };

    rowLabel("Corner dwell", 0);
    QHBoxLayout* const dwell = rowLayout(10);
    dwell->addWidget(dwellSlider);
    dwell->addWidget(dwellValue);
    dwell->addStretch();
    QVBoxLayout* const dwellColumn = columnLayout(4);
    dwellColumn->addLayout(dwell);
    dwellColumn->addWidget(Style::caption(
        QStringLiteral("Rest the cursor in a hot corner this long before it opens.")));
    grid->addLayout(dwellColumn, 0, 1);

    rowLabel("Animation", 1);
    QVBoxLayout* const animation = columnLayout(4);
    animation->addWidget(animationPopup, 0, Qt::AlignLeft);
    animation->addWidget(
        Style::caption(QStringLiteral("How windows slide under and out of the edge.")));
    grid->addLayout(animation, 1, 1);

    grid->addWidget(Style::separator(), 2, 0, 1, 2);
    grid->addWidget(loginCheckbox, 3, 1);
    auto* const restore = new QPushButton(QStringLiteral("Restore Defaults"));
    restore->setAutoDefault(false);
    connect(restore, &QPushButton::clicked, this, [this] { restoreDefaults(); });
    grid->addWidget(restore, 4, 1, Qt::AlignLeft);
    return titledPane(QStringLiteral("General"), QStringLiteral("Shared by every app in the list."),
                      QStringLiteral("gearshape"), holding(grid));
}

QWidget* SettingsWindowController::titledPane(const QString& title, const QString& subtitle,
                                              const QString& icon, QWidget* body) {
    QVBoxLayout* const titles = columnLayout(1);
    titles->addWidget(Style::label(title, 17, Style::Colour::label, QFont::DemiBold));
    titles->addWidget(Style::caption(subtitle));
    QHBoxLayout* const header = rowLayout(10);
    header->addWidget(iconLabel(Symbols::symbol(icon, Style::colour(Style::Colour::secondaryLabel,
                                                                    QApplication::palette())),
                                32));
    header->addLayout(titles);
    header->addStretch();
    QVBoxLayout* const pane = columnLayout(12);
    pane->addLayout(header);
    pane->addWidget(Style::separator());
    pane->addWidget(body);
    return holding(pane);
}

void SettingsWindowController::loadGeneralControls() {
    const int dwell = settings.hotZoneDwellMs();
    {
        const QSignalBlocker quiet(dwellSlider);
        dwellSlider->setValue(std::clamp(dwell, leastDwell, greatestDwell));
    }
    dwellValue->setText(seconds(dwell));

    const auto style = parseTuckAnimationStyle(settings.tuckAnimation().value_or("slide"))
                           .value_or(TuckAnimationStyle::slide);
    animationPopup->setCurrentIndex(animationPopup->findData(
        QString::fromUtf8(rawValue(style).data(), static_cast<qsizetype>(rawValue(style).size()))));
    showSwitched(*loginCheckbox, desktop.loginItem.status() == LoginItemStatus::enabled);
}

// The applications --------------------------------------------------------------------------------

void SettingsWindowController::addBinding(std::function<void(const std::string&)> then) {
    if (!window) return;
    auto* const chooser = new ApplicationChooser(
        *window, desktop.catalog, icons,
        [this, then = std::move(then)](const std::string& appPath) {
            const std::vector<AppBinding> list = settings.appBindings();
            const bool isKnown = std::any_of(list.begin(), list.end(), [&](const AppBinding& each) {
                return each.appPath == appPath;
            });
            if (isKnown) {
                controller.runAlert({"Already added",
                                     appName(desktop.catalog, appPath) +
                                         " is already in the list. Edit the existing one instead.",
                                     {"OK"}});
                return;
            }
            appendBinding(appPath);
            if (then) then(appPath);
        });
    present(*chooser);
}

void SettingsWindowController::appendBinding(const std::string& appPath) {
    std::vector<AppBinding> list = settings.appBindings();
    list.push_back({appPath, "none", "false"});
    stored(settings.setAppBindings(list));
    controller.reloadFromSettings();
    reportBindingHealth();
    selectedBindingIndex = list.size() - 1;
    rebuildSections();
}

void SettingsWindowController::removeSelectedBinding() {
    std::vector<AppBinding> list = settings.appBindings();
    if (!selectedBindingIndex || *selectedBindingIndex >= list.size()) return;
    const std::string removed = list[*selectedBindingIndex].appPath;
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(*selectedBindingIndex));
    stored(settings.setAppBindings(list));
    std::vector<std::string> stillConfigured;
    for (const AppBinding& binding : list) stillConfigured.push_back(binding.appPath);
    stored(settings.setPlacements(
        Placement::pruning(settings.placements(), removed, stillConfigured)));
    controller.reloadFromSettings();
    reportBindingHealth();
    selectedBindingIndex.reset();
    rebuildSections();
}

void SettingsWindowController::rosterSelectionChanged(std::size_t index) {
    for (std::size_t i = 0; i < rosterSelectionButtons.size(); ++i) {
        showSwitched(*rosterSelectionButtons[i], i == index);
    }
    selectedBindingIndex = index;
    removeButton->setEnabled(true);
}

void SettingsWindowController::rosterEditTapped(std::size_t index) {
    const std::vector<AppBinding> list = settings.appBindings();
    if (index < list.size()) {
        presentSheet(list[index].appPath, "", AppEditSheet::Arrival::edit(std::nullopt));
    }
}

void SettingsWindowController::presentSheet(const std::string& appPath,
                                            const std::string& displayRef,
                                            const AppEditSheet::Arrival& arrival) {
    if (!window) return;
    auto* const sheet = new AppEditSheet(
        settings, appPath, displayRef, arrival, controller,
        {desktop.screens, desktop.hotKeys, desktop.applications, desktop.catalog}, icons,
        [this] {
            controller.reloadFromSettings();
            reportBindingHealth();
            rebuildSections();
        },
        window.get());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    present(*sheet);
}

/// A second click on what opens it may reach the window before the sheet is there.
void SettingsWindowController::present(QDialog& sheet) const {
    sheet.open();
    front.bring(sheet);
}

// The displays ------------------------------------------------------------------------------------

void SettingsWindowController::presentAssignMenu(const std::string& displayRef, const Slot& slot) {
    const std::vector<AppBinding> bindings = settings.appBindings();
    if (bindings.empty()) {
        addBinding([this, displayRef, slot](const std::string& appPath) {
            presentSheet(appPath, displayRef, AppEditSheet::Arrival::assign(slot));
        });
        return;
    }
    pendingAssignTarget = {displayRef, slot};
    auto* const menu = new QMenu(window.get());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const AppBinding& binding : bindings) {
        QString title = text(appName(desktop.catalog, binding.appPath));
        QAction* const item = menu->addAction(
            icons.iconFor(binding.appPath), title.replace(QLatin1Char('&'), QStringLiteral("&&")));
        connect(item, &QAction::triggered, this,
                [this, appPath = binding.appPath] { assignMenuItemChosen(appPath); });
    }
    // What was chosen is told after the menu has closed.
    connect(
        menu, &QMenu::aboutToHide, this, [this] { pendingAssignTarget.reset(); },
        Qt::QueuedConnection);
    menu->popup(QCursor::pos());
}

void SettingsWindowController::assignMenuItemChosen(const std::string& appPath) {
    if (!pendingAssignTarget) return;
    const auto [displayRef, slot] = *pendingAssignTarget;
    presentSheet(appPath, displayRef, AppEditSheet::Arrival::assign(slot));
}

void SettingsWindowController::displaysChanged() {
    desktop.runLoop.async([this, alive = life.watch()] {
        if (alive.expired() || !window || !window->isVisible()) return;
        keepOnScreen();
        rebuildSections();
    });
}

/// The display that it stood on may have gone or shrunk.
void SettingsWindowController::keepOnScreen() {
    const QRect frame = window->frameGeometry();
    const auto screens = QGuiApplication::screens();
    const bool isWhole = std::any_of(screens.begin(), screens.end(), [&](const QScreen* each) {
        return each->availableGeometry().contains(frame);
    });
    if (isWhole || screens.isEmpty()) return;
    const QRect room = window->screen()->availableGeometry();
    const QSize decoration = frame.size() - window->size();
    window->resize(window->size().boundedTo(room.size() - decoration));
    const QSize size = window->size() + decoration;
    const auto within = [](int at, int low, int high) { return std::max(low, std::min(at, high)); };
    window->move(within(frame.x(), room.x(), room.x() + room.width() - size.width()),
                 within(frame.y(), room.y(), room.y() + room.height() - size.height()));
}

void SettingsWindowController::forgetDisplay(const std::string& displayRef) {
    const int response =
        controller.runAlert({"Forget this display?",
                             "Every corner and tuck edge configured for it will be removed.",
                             {"Forget", "Cancel"}});
    if (response != alertFirstButtonReturn) return;
    stored(settings.setPlacements(Placement::forgetting(settings.placements(), displayRef)));
    auto known = settings.knownDisplays();
    known.erase(displayRef);
    stored(settings.setKnownDisplays(known));
    controller.reloadFromSettings();
    if (writeFailed) reportBindingHealth();
    rebuildSections();
}

// What is common to all ---------------------------------------------------------------------------

void SettingsWindowController::dwellChanged(int value) {
    dwellValue->setText(seconds(value));
}

/// A drag is stored once, when it ends; what the keyboard moves is not.
void SettingsWindowController::dwellReleased() {
    const int value = dwellSlider->value();
    stored(desktop.defaults.setObject(Keys::hotZoneDwellMs, value));
    controller.applyHotZone(value);
    if (writeFailed) reportBindingHealth();
}

void SettingsWindowController::animationChanged() {
    const std::string value = animationPopup->currentData().isValid()
                                  ? animationPopup->currentData().toString().toStdString()
                                  : "slide";
    stored(desktop.defaults.setObject(Keys::tuckAnimation, value));
    controller.setAnimationStyle(
        parseTuckAnimationStyle(value).value_or(TuckAnimationStyle::slide));
    reportBindingHealth();
}

void SettingsWindowController::loginChanged() {
    const bool isOn = loginCheckbox->isChecked();
    if (const auto error = LoginItem::setEnabled(isOn, desktop.loginItem)) {
        showSwitched(*loginCheckbox, !isOn);
        report(text(error->errorDescription.value_or("")));
    } else {
        reportBindingHealth();
    }
}

void SettingsWindowController::restoreDefaults() {
    stored(settings.restoreDefaults());
    controller.reloadFromSettings();
    reportBindingHealth();
    selectedBindingIndex.reset();
    rebuildSections();
}

bool SettingsWindowController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == window.get()) {
        // Drawings have the colours of the palette that they were made under.
        if (event->type() == QEvent::ApplicationPaletteChange) {
            QMetaObject::invokeMethod(
                this,
                [this] {
                    colourButtons();
                    rebuildSections();
                },
                Qt::QueuedConnection);
        }
        return false;
    }
    if (event->type() == QEvent::Wheel) {
        // It scrolls the column, whatever lies under the pointer meanwhile.
        event->ignore();
        return true;
    }
    if (watched == dwellSlider && event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
        // Once the slider has seen it too.
        QMetaObject::invokeMethod(
            this, [this] { dwellReleased(); }, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

// The status line ---------------------------------------------------------------------------------

void SettingsWindowController::reportBindingHealth() {
    const std::vector<AppBinding> bindings = settings.appBindings();
    std::vector<std::string> messages = AppBinding::validated(bindings).dropped;
    const std::vector<Placement> placements = settings.placements();
    for (const AppBinding& binding : bindings) {
        bool hasEdge = false;
        bool hasCorner = false;
        for (const Placement& placement : placements) {
            if (placement.appPath != binding.appPath) continue;
            hasEdge = hasEdge || TuckEdge::parse(placement.tuckEdge);
            hasCorner = hasCorner || parseHotZoneCorner(placement.corner);
        }
        if (!hasEdge || hasCorner || HotKeySpec::parse(binding.hotKey) ||
            saysYes(binding.autoTuck)) {
            continue;
        }
        messages.push_back(appName(desktop.catalog, binding.appPath) +
                           ": add a shortcut, a corner or Auto to tuck it outside Settings");
    }
    if (std::exchange(writeFailed, false)) {
        messages.insert(messages.begin(), "The settings could not be saved");
    }
    report(text(joined(messages, " · ")));
}

void SettingsWindowController::report(const QString& message) {
    status->setText(message);
    status->setVisible(!message.isEmpty());
    statusDivider->setVisible(!message.isEmpty());
}

}  // namespace quorvel
