#include "main/interface/RosterLabel.hpp"

#include <gtest/gtest.h>

#include <QImage>
#include <QPixmap>

#include "main/interface/Style.hpp"

namespace quorvel {
namespace {

class RosterLabelTest : public testing::Test {
protected:
    static QIcon icon() {
        QPixmap square(18, 18);
        square.fill(Qt::magenta);
        return square;
    }
    static QImage pictureOf(RosterLabel& label, int width) {
        label.resize(width, 20);
        return label.grab().toImage();
    }
    /// From the first to the last column in which a pixel has this property.
    template <class Is>
    static std::pair<int, int> columns(const QImage& image, Is is) {
        std::pair<int, int> found{-1, -1};
        for (int x = 0; x < image.width(); ++x) {
            for (int y = 0; y < image.height(); ++y) {
                if (!is(image.pixelColor(x, y))) continue;
                if (found.first < 0) found.first = x;
                found.second = x;
            }
        }
        return found;
    }
    static bool isRed(const QColor& colour) {
        return colour.red() > colour.green() + 60 && colour.red() > colour.blue() + 60;
    }
};

TEST_F(RosterLabelTest, TheIconComesFirstAndWhatIsMissingLastInRed) {
    RosterLabel label({icon(), QStringLiteral("Notes"), QStringLiteral("None"), false});
    const QImage picture = pictureOf(label, label.sizeHint().width());
    const auto magenta =
        columns(picture, [](const QColor& colour) { return colour == QColor(Qt::magenta); });
    EXPECT_EQ(magenta, std::pair(0, 17));
    const auto red = columns(picture, isRed);
    EXPECT_GT(red.first, label.sizeHint().width() / 2);
    EXPECT_LT(red.second, label.sizeHint().width());
    EXPECT_EQ(label.text(), QStringLiteral("Notes, None, Not installed"));
}

TEST_F(RosterLabelTest, WhatIsInstalledHasNothingRed) {
    RosterLabel label({icon(), QStringLiteral("Notes"), QStringLiteral("None"), true});
    EXPECT_EQ(columns(pictureOf(label, 300), isRed).first, -1);
    EXPECT_EQ(label.text(), QStringLiteral("Notes, None"));
}

TEST_F(RosterLabelTest, AVeryLongNameLeavesRoomForWhatFollows) {
    RosterLabel label({icon(), QString(300, QLatin1Char('w')), QStringLiteral("None"), false});
    EXPECT_LT(label.minimumSizeHint().width(), 250);
    const auto red = columns(pictureOf(label, 250), isRed);
    EXPECT_GT(red.first, 150);
    EXPECT_LT(red.second, 250);
}

TEST_F(RosterLabelTest, FromRightToLeftItIsTurnedOver) {
    RosterLabel label({icon(), QStringLiteral("Notes"), QStringLiteral("None"), true});
    label.setLayoutDirection(Qt::RightToLeft);
    const auto magenta = columns(
        pictureOf(label, 200), [](const QColor& colour) { return colour == QColor(Qt::magenta); });
    EXPECT_EQ(magenta, std::pair(182, 199));
}

TEST_F(RosterLabelTest, LineBreaksInANameAreBlanks) {
    const RosterLabel label({icon(), QStringLiteral("a\nb"), QStringLiteral("None"), true});
    EXPECT_EQ(label.text(), QStringLiteral("a b, None"));
}

}  // namespace
}  // namespace quorvel
