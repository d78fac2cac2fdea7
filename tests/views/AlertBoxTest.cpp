#include "main/interface/AlertBox.hpp"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace quorvel {
namespace {

const Alert twoButtons{"Editor not found",
                       "Nothing is installed at:\n/opt/editor\n\nChoose.",
                       {"Open Settings…", "Cancel"}};
const Alert oneButton{"Could not open Editor", "No such program.", {"OK"}};
const Alert threeButtons{"Three", "", {"First", "Second", "Third"}};

QPushButton* buttonOf(const QMessageBox& box, const char* title) {
    for (QPushButton* button : box.findChildren<QPushButton*>()) {
        if (button->text() == QString::fromUtf8(title)) return button;
    }
    return nullptr;
}

/// The response to an alert that is answered by `act` once it is up.
template <class Act>
int responseTo(const Alert& alert, Act act) {
    const auto box = makeAlertBox(alert);
    QTimer::singleShot(0, box.get(), [&] { act(*box); });
    box->exec();
    return alertResponse(*box);
}

TEST(AlertBoxTest, IsAWarningWithExactlyTheseTexts) {
    const auto box = makeAlertBox(twoButtons);
    EXPECT_EQ(box->windowTitle(), QStringLiteral("Quorvel"));
    EXPECT_EQ(box->icon(), QMessageBox::Warning);
    EXPECT_EQ(box->text(), QString::fromStdString(twoButtons.message));
    EXPECT_EQ(box->informativeText(), QString::fromStdString(twoButtons.informativeText));
    EXPECT_EQ(box->buttons().size(), 2);
    EXPECT_NE(buttonOf(*box, "Open Settings…"), nullptr);
    EXPECT_NE(buttonOf(*box, "Cancel"), nullptr);
}

TEST(AlertBoxTest, WhatLooksLikeMarkupIsShownAsItStands) {
    const auto box = makeAlertBox({"<b>bold</b> &amp;", "<i>/opt/a&b</i>", {"OK"}});
    int shown = 0;
    for (const QLabel* label : box->findChildren<QLabel*>()) {
        if (label->text().isEmpty()) continue;
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
        ++shown;
    }
    EXPECT_EQ(shown, 2);
}

TEST(AlertBoxTest, TheFirstButtonIsTheDefaultAndTheLastIsEscape) {
    for (const Alert& alert : {oneButton, twoButtons, threeButtons}) {
        const auto box = makeAlertBox(alert);
        EXPECT_EQ(box->defaultButton()->text().toStdString(), alert.buttons.front());
        EXPECT_EQ(box->escapeButton()->text().toStdString(), alert.buttons.back());
    }
}

TEST(AlertBoxTest, EachButtonHasItsOwnResponse) {
    for (const Alert& alert : {oneButton, twoButtons, threeButtons}) {
        int expected = alertFirstButtonReturn;
        for (const std::string& title : alert.buttons) {
            EXPECT_EQ(
                responseTo(alert, [&](QMessageBox& box) { buttonOf(box, title.c_str())->click(); }),
                expected++)
                << title;
        }
    }
}

TEST(AlertBoxTest, ReturnIsTheFirstButton) {
    EXPECT_EQ(
        responseTo(threeButtons, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }),
        1000);
}

TEST(AlertBoxTest, EscapeClosingAndDismissingAreTheLastButton) {
    EXPECT_EQ(
        responseTo(threeButtons, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }),
        1002);
    EXPECT_EQ(responseTo(threeButtons, [](QMessageBox& box) { box.close(); }), 1002);
    EXPECT_EQ(responseTo(threeButtons, [](QMessageBox& box) { box.reject(); }), 1002);
    EXPECT_EQ(responseTo(oneButton, [](QMessageBox& box) { box.reject(); }), 1000);
}

TEST(AlertBoxTest, ALongPathStaysOnTheScreen) {
    const auto box = makeAlertBox(
        {std::string(300, 'w'), "Nothing is installed at:\n/" + std::string(4000, 'w'), {"OK"}});
    box->show();
    QTest::qWait(0);
    EXPECT_LE(box->geometry().width(), box->screen()->geometry().width());
    EXPECT_LE(box->geometry().height(), box->screen()->geometry().height());
}

}  // namespace
}  // namespace quorvel
