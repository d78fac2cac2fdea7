#pragma once

#include <QIcon>
#include <QLabel>
#include <QString>

namespace quorvel {

/// An application in the list: its icon, its name, its shortcut, and whether it is there at all.
/// One widget instead of four, as lists may be long. The name is cut short where it does not fit.
/// To assistive technology it is one text, "Firefox, ⌃⌥F".
class RosterLabel final : public QLabel {
public:
    struct Content {
        QIcon icon;
        QString name;
        QString shortcut;
        bool isInstalled = true;
    };

    explicit RosterLabel(Content content);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int widthBesideName() const;
    void measure();

    Content shown;
    int nameWidth = 0;
    int shortcutWidth = 0;
    int absenceWidth = 0;
};

}  // namespace quorvel
