#pragma once

#include <QDialog>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <functional>
#include <string>
#include <vector>

#include "main/interface/AppIcons.hpp"
#include "platform/ApplicationCatalog.hpp"

namespace quorvel {

/// The sheet that an application is chosen in: from the installed ones, with a search field, or a
/// desktop entry or executable from the disk.
class ApplicationChooser final : public QDialog {
public:
    /// `onChosen` is called once, with the path, when the user has chosen; never on Cancel. The
    /// icons outlive the sheet.
    ApplicationChooser(QWidget& parent, const ApplicationCatalog& catalog, AppIcons& icons,
                       std::function<void(const std::string& path)> onChosen);

    QLineEdit* const searchField;
    QListView* const list;
    QPushButton* const addButton;

    void accept() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void chooseFromDisk();
    void choose(const std::string& path);

    std::function<void(const std::string&)> onChosen;
};

}  // namespace quorvel
