#include "main/interface/PopUpMenu.hpp"

#include <gtest/gtest.h>

#include <QAction>
#include <QTest>

namespace quorvel {
namespace {

class PopUpMenuTest : public testing::Test {
protected:
    std::vector<std::string> chosen;
    const std::unique_ptr<QMenu> menu =
        makePopUpMenu({{"Settings…", [this] { chosen.emplace_back("settings"); }, ","},
                       {"Cut & paste", [this] { chosen.emplace_back("paste"); }},
                       MenuItem::separator(),
                       {"Quit Quorvel", [this] { chosen.emplace_back("quit"); }, "q"}});
};

TEST_F(PopUpMenuTest, HasItsEntriesInOrder) {
    const QList<QAction*> actions = menu->actions();
    ASSERT_EQ(actions.size(), 4);
    EXPECT_EQ(actions[0]->text(), QStringLiteral("Settings…"));
    EXPECT_EQ(actions[1]->text(), QStringLiteral("Cut && paste")) << "no key of its own";
    EXPECT_TRUE(actions[2]->isSeparator());
    EXPECT_EQ(actions[3]->text(), QStringLiteral("Quit Quorvel"));
}

TEST_F(PopUpMenuTest, ShowsItsKeys) {
    const QList<QAction*> actions = menu->actions();
    EXPECT_EQ(actions[0]->shortcut(), QKeySequence(Qt::META | Qt::Key_Comma));
    EXPECT_TRUE(actions[1]->shortcut().isEmpty());
    EXPECT_EQ(actions[3]->shortcut(), QKeySequence(Qt::META | Qt::Key_Q));
    EXPECT_TRUE(actions[3]->isShortcutVisibleInContextMenu());
}

TEST_F(PopUpMenuTest, AnEntryDoesItsWorkByClickAndByArrowKeys) {
    menu->popup({0, 0});
    QTest::mouseClick(menu.get(), Qt::LeftButton, {},
                      menu->actionGeometry(menu->actions()[3]).center());
    EXPECT_EQ(chosen, std::vector<std::string>{"quit"});
    menu->popup({0, 0});
    QTest::keyClick(menu.get(), Qt::Key_Down);
    QTest::keyClick(menu.get(), Qt::Key_Return);
    EXPECT_EQ(chosen.back(), "settings");
    EXPECT_FALSE(menu->isVisible());
}

TEST_F(PopUpMenuTest, ItsKeysWorkWhileItIsOpen) {
    menu->popup({0, 0});
    QTest::keyClick(menu.get(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(chosen.empty());
    QTest::keyClick(menu.get(), Qt::Key_Q, Qt::MetaModifier);
    EXPECT_EQ(chosen, std::vector<std::string>{"quit"});
    EXPECT_FALSE(menu->isVisible());
}

}  // namespace
}  // namespace quorvel
