#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QMessageBox>
#include <QPainter>
#include <QStyleOption>
#include <QTemporaryDir>
#include <QTest>
#include <QTextLayout>
#include <cmath>
#include <memory>

#include "main/interface/AlertBox.hpp"
#include "main/interface/ApplicationChooser.hpp"
#include "main/interface/ElidedLabel.hpp"
#include "main/interface/IndicatorStyle.hpp"
#include "main/interface/SegmentedControl.hpp"
#include "main/interface/Style.hpp"
#include "main/interface/WrappedLabel.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"

namespace quorvel {
namespace {

QPalette lightPalette() {
    return QPalette(QColor(0xEF, 0xEF, 0xEF));
}

QPalette darkPalette() {
    QPalette palette(QColor(0x31, 0x36, 0x3B), QColor(0x2A, 0x2E, 0x32));
    palette.setColor(QPalette::WindowText, QColor(0xFC, 0xFC, 0xFC));
    palette.setColor(QPalette::Base, QColor(0x1B, 0x1E, 0x20));
    return palette;
}

double luminance(const QColor& colour) {
    const auto linear = [](float value) {
        return value <= 0.04045F ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

/// As the Web Content Accessibility Guidelines define it.
double contrast(const QColor& a, const QColor& b) {
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

QImage imageOf(QWidget& widget) {
    return widget.grab().toImage();
}

bool has(const QImage& image, const QColor& colour) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == colour) return true;
        }
    }
    return false;
}

TEST(AppearanceTest, TextIsReadOnEitherGround) {
    for (const QPalette& palette : {lightPalette(), darkPalette()}) {
        const QColor ground = palette.color(QPalette::Window);
        for (const auto role : {Style::Colour::label, Style::Colour::secondaryLabel,
                                Style::Colour::tertiaryLabel, Style::Colour::red}) {
            EXPECT_GE(contrast(Style::colour(role, palette), ground), 4.5)
                << static_cast<int>(role) << (Style::isDark(palette) ? " dark" : " light");
        }
    }
}

TEST(AppearanceTest, NoCaptionEndsInALineOfOneWord) {
    const QString text = QStringLiteral(
        "Each app has one shortcut. Corners and tuck edges are set per display below.");
    constexpr int tooNarrow = 330;
    const std::unique_ptr<QLabel> caption(Style::caption(text, tooNarrow));
    ASSERT_LE(caption->maximumWidth(), tooNarrow);
    QTextLayout layout(text, caption->font());
    std::vector<double> widths;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(caption->maximumWidth());
        widths.push_back(line.naturalTextWidth());
    }
    layout.endLayout();
    ASSERT_GT(widths.size(), 1u);
    EXPECT_GT(widths.back(), 0.6 * widths.front());
}

TEST(AppearanceTest, ANameFromRightToLeftReadsByItsOwnDirection) {
    const ElidedLabel label(QStringLiteral("محرر (Beta)"), {}, 13);
    const QString shown = label.shownText(500);
    EXPECT_EQ(shown.front(), QChar(0x2068));
    EXPECT_EQ(shown.back(), QChar(0x2069));
}

TEST(AppearanceTest, OfALongNameTheMiddleGoesAndNotWhatIsSaidAboutIt) {
    const auto drawn = [](const QString& end, Qt::TextElideMode elide) {
        WrappedLabel label(2, 11, Style::Colour::red, QFont::Normal, elide);
        label.setText(QString(300, QLatin1Char('n')) + end);
        label.resize(400, 40);
        return imageOf(label);
    };
    const QString running = QStringLiteral(" is not running.");
    const QString removed = QStringLiteral(" was taken away.");
    EXPECT_NE(drawn(running, Qt::ElideMiddle), drawn(removed, Qt::ElideMiddle));
    EXPECT_EQ(drawn(running, Qt::ElideRight), drawn(removed, Qt::ElideRight));
}

TEST(AppearanceTest, ADisabledChoiceIsNotHighlighted) {
    SegmentedControl control(QStringLiteral("Part"),
                             {QStringLiteral("Whole"), QStringLiteral("Half")});
    control.resize(control.sizeHint());
    const QColor accent = control.palette().color(QPalette::Active, QPalette::Highlight);
    ASSERT_TRUE(has(imageOf(control), accent));
    control.setEnabled(false);
    const QImage image = imageOf(control);
    EXPECT_FALSE(has(image, accent));
    EXPECT_FALSE(has(image, control.palette().color(QPalette::Active, QPalette::HighlightedText)));
}

TEST(AppearanceTest, AShortAlertIsNotAColumnOfWords) {
    const auto box = makeAlertBox(
        {"Already added", "Mail is already in the list. Edit the existing one instead.", {"OK"}});
    const auto* const body = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"));
    ASSERT_NE(body, nullptr);
    EXPECT_GE(body->minimumWidth(), body->fontMetrics().horizontalAdvance(body->text()));
    const auto long300 = makeAlertBox({"Title", std::string(300, 'w'), {"OK"}});
    EXPECT_LE(
        long300->findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))->minimumWidth(),
        420);
}

TEST(AppearanceTest, ASearchThatFindsNothingSaysSo) {
    SimulatedDesktop sim;
    sim.install("/usr/share/applications/notes.desktop", "Notes");
    AppIcons icons(sim.catalog, sim.files);
    QWidget parent;
    ApplicationChooser chooser(parent, sim.catalog, icons, [](const std::string&) {});
    chooser.setAttribute(Qt::WA_DeleteOnClose, false);
    chooser.show();
    chooser.searchField->setText(QStringLiteral("nothing like it"));
    QCoreApplication::processEvents();
    const QImage image = imageOf(*chooser.list->viewport());
    const QColor ground = image.pixelColor(1, 1);
    bool isUniform = true;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = image.height() / 2 - 6; y < image.height() / 2 + 6; ++y) {
            isUniform = isUniform && image.pixelColor(x, y) == ground;
        }
    }
    EXPECT_FALSE(isUniform);
}

TEST(AppearanceTest, TheIconOfTheChosenProgramKeepsItsColours) {
    const QColor own(200, 40, 10);
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("notes.png"));
    QImage picture(24, 24, QImage::Format_ARGB32);
    picture.fill(own);
    ASSERT_TRUE(picture.save(file));
    const std::string notes = "/usr/share/applications/notes.desktop";
    SimulatedDesktop sim;
    sim.install(notes, "Notes");
    sim.catalog.add({notes, "Notes", {{}, file.toStdString()}});
    AppIcons icons(sim.catalog, sim.files);
    QWidget parent;
    ApplicationChooser chooser(parent, sim.catalog, icons, [](const std::string&) {});
    chooser.setAttribute(Qt::WA_DeleteOnClose, false);
    chooser.show();
    chooser.searchField->setText(QStringLiteral("notes"));
    QCoreApplication::processEvents();
    ASSERT_TRUE(chooser.list->selectionModel()->hasSelection());
    EXPECT_TRUE(has(imageOf(*chooser.list->viewport()), own));
}

TEST(AppearanceTest, OutlinesOfIndicatorsAreSeenInTheDark) {
    const IndicatorStyle style;
    const QPalette palette = darkPalette();
    QStyleOptionButton option;
    option.palette = palette;
    option.rect = QRect(2, 2, 15, 15);
    option.state = QStyle::State_Enabled | QStyle::State_Off;
    for (const auto element : {QStyle::PE_IndicatorRadioButton, QStyle::PE_IndicatorCheckBox}) {
        QImage image(20, 20, QImage::Format_RGB32);
        image.fill(palette.color(QPalette::Window));
        QPainter painter(&image);
        style.drawPrimitive(element, &option, &painter, nullptr);
        painter.end();
        double best = 1;
        for (int x = 0; x < 8; ++x) {
            best =
                std::max(best, contrast(image.pixelColor(x, 9), palette.color(QPalette::Window)));
        }
        EXPECT_GE(best, 3) << element;
    }
}

TEST(AppearanceTest, ColouredLabelsFollowTheDesktop) {
    const QPalette before = QApplication::palette();
    QWidget window;
    QLabel* const label = Style::label(QStringLiteral("0.30 s"), 11, Style::Colour::secondaryLabel);
    label->setParent(&window);
    window.show();
    QApplication::setPalette(darkPalette());
    const QColor wanted = Style::colour(Style::Colour::secondaryLabel, darkPalette());
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return label->palette().color(QPalette::WindowText) == wanted; }, 2000));
    QApplication::setPalette(before);
    QCoreApplication::sendPostedEvents();
}

}  // namespace
}  // namespace quorvel
