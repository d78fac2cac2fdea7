#include "main/interface/ElidedLabel.hpp"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

bool shows(const QString& shown, const char* part) {
    return shown.contains(QString::fromUtf8(part));
}

TEST(ElidedLabelTest, TheHeadIsCutShortBeforeTheTail) {
    const ElidedLabel label(QString(300, QLatin1Char('w')), QStringLiteral(" — left tuck"), 12);
    const QString shown = label.shownText(200);
    EXPECT_TRUE(shows(shown, "ww")) << shown.toStdString();
    EXPECT_TRUE(shows(shown, "…"));
    EXPECT_TRUE(shows(shown, " — left tuck"));
    EXPECT_LE(label.fontMetrics().horizontalAdvance(shown), 201);
}

TEST(ElidedLabelTest, WhereNotEvenTheTailFitsItIsCutShortToo) {
    const ElidedLabel label(QStringLiteral("Firefox"), QStringLiteral(" — Bottom right corner"),
                            12);
    for (int width = 0; width < label.sizeHint().width(); ++width) {
        const QString shown = label.shownText(width);
        if (shown.isEmpty()) continue;
        EXPECT_TRUE(shows(shown, "…")) << width;
        if (width >= 20) {
            EXPECT_LE(label.fontMetrics().horizontalAdvance(shown), width + 1);
        }
    }
}

TEST(ElidedLabelTest, WhatFitsIsWhole) {
    const ElidedLabel label(QStringLiteral("Firefox"), {}, 12);
    EXPECT_EQ(label.shownText(label.sizeHint().width()), QStringLiteral("Firefox"));
    EXPECT_EQ(label.text(), QStringLiteral("Firefox"));
}

TEST(ElidedLabelTest, LineBreaksAreBlanks) {
    const ElidedLabel label(QStringLiteral("a\nb\u2028c"), {}, 12);
    EXPECT_EQ(label.shownText(1000), QStringLiteral("a b c"));
}

}  // namespace
}  // namespace quorvel
