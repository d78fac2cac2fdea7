// What the windows cost. The driver reads what it prints.
//
//   quorvel-bench-interface rebuilds TIMES
//
// prints, each on a line of its own and in turn, how many milliseconds one rebuild of a large
// settings window took and how many the same number of plain labels and buttons. With the platform
// that QT_QPA_PLATFORM names.
//
//   quorvel-bench-interface window WIDTH HEIGHT
//
// is the least that a program can do which has a window: one with a line of text.

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <chrono>
#include <cstdio>
#include <memory>

#include "main/interface/SettingsWindowController.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/support/FakeSettingsHost.hpp"

namespace {

using namespace quorvel;
using Clock = std::chrono::steady_clock;

constexpr int programs = 100;
constexpr int displays = 4;

/// Lays out and paints whatever waits for it.
void finish(QWidget& window) {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    window.repaint();
    QCoreApplication::processEvents();
}

template <class Act>
double milliseconds(Act&& act) {
    const auto start = Clock::now();
    act();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void furnish(SimulatedDesktop& sim) {
    const Settings settings(sim.defaults);
    std::vector<Screen> screens;
    for (int i = 0; i < displays; ++i) {
        screens.push_back(SimulatedScreens::screen(static_cast<std::uint32_t>(i + 1),
                                                   {1920.0 * i, 0, 1920, 1080}));
    }
    sim.screens.arrange(screens);
    std::vector<AppBinding> bindings;
    std::vector<Placement> placements;
    constexpr const char* corners[] = {"topLeft", "topRight", "bottomLeft", "bottomRight"};
    constexpr const char* edges[] = {"left", "right", "bottom", "top-left", "bottom-right"};
    for (int i = 0; i < programs; ++i) {
        const std::string path = "/opt/programs/" + std::to_string(i) + ".desktop";
        sim.install(path, "Program " + std::to_string(i));
        bindings.push_back({path, "none", "false"});
        const int on = i % displays;
        const bool hasCorner = i / displays < 4;
        placements.push_back({path, *screens[static_cast<std::size_t>(on)].uuid,
                              hasCorner ? corners[i / displays] : "none",
                              hasCorner ? "none" : edges[i % 5]});
    }
    settings.setAppBindings(bindings);
    settings.setPlacements(placements);
}

/// The same number of widgets in rows of a column that scrolls.
void buildPlain(QScrollArea& area, int labels, int buttons) {
    auto* const column = new QWidget;
    auto* const rows = new QVBoxLayout(column);
    for (int i = 0; i < qMax(labels, buttons); ++i) {
        auto* const row = new QHBoxLayout;
        if (i < labels) row->addWidget(new QLabel(QStringLiteral("Program %1").arg(i)));
        if (i < buttons) row->addWidget(new QPushButton(QStringLiteral("Edit")));
        rows->addLayout(row);
    }
    area.setWidget(column);
}

int rebuild(int times) {
    SimulatedDesktop sim;
    FakeSettingsHost host;
    furnish(sim);
    SettingsWindowController controller(sim.desktop(), host, FrontWindow([](std::uint64_t) {}));
    controller.show();
    QWidget& window = *controller.settingsWindow();
    finish(window);
    const auto labels = static_cast<int>(window.findChildren<QLabel*>().size());
    const auto buttons = static_cast<int>(window.findChildren<QAbstractButton*>().size());

    QScrollArea plain;
    plain.setWidgetResizable(true);
    plain.resize(window.size());
    buildPlain(plain, labels, buttons);
    plain.show();
    finish(plain);

    for (int round = 0; round < times; ++round) {
        const double settings = milliseconds([&] {
            controller.show();
            finish(window);
        });
        const double widgets = milliseconds([&] {
            buildPlain(plain, labels, buttons);
            finish(plain);
        });
        std::printf("%.4f %.4f\n", settings, widgets);
    }
    return 0;
}

int showWindow(int width, int height) {
    QLabel window(QStringLiteral("A window with a line of text"));
    window.setAlignment(Qt::AlignTop);
    window.setWindowTitle(QStringLiteral("Floor"));
    window.resize(width, height);
    window.show();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.size() == 2 && arguments[0] == QStringLiteral("rebuilds")) {
        return rebuild(arguments[1].toInt());
    }
    if (arguments.size() == 3 && arguments[0] == QStringLiteral("window")) {
        return showWindow(arguments[1].toInt(), arguments[2].toInt());
    }
    std::fputs("usage: quorvel-bench-interface rebuilds TIMES | window WIDTH HEIGHT\n", stderr);
    return 2;
}
