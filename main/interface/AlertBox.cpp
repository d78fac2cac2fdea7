#include "main/interface/AlertBox.hpp"

#include <QLabel>
#include <QPushButton>

namespace quorvel {
namespace {

constexpr const char* responseProperty = "response";

}  // namespace

std::unique_ptr<QMessageBox> makeAlertBox(const Alert& alert) {
    auto box = std::make_unique<QMessageBox>();
    box->setWindowTitle(QStringLiteral("Quorvel"));
    box->setIcon(QMessageBox::Warning);
    box->setText(QString::fromStdString(alert.message));
    box->setInformativeText(QString::fromStdString(alert.informativeText));
    // Both texts hold paths and messages of others, which may look like markup.
    for (QLabel* label : box->findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
    if (auto* const message = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
        QFont font = message->font();
        font.setBold(true);
        message->setFont(font);
    }
    if (auto* const body = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))) {
        // Or it is as narrow as the message above it.
        constexpr int widest = 420;
        body->setMinimumWidth(qMin(widest, body->fontMetrics().size(0, body->text()).width() + 2));
    }

    int response = alertFirstButtonReturn;
    for (const std::string& title : alert.buttons) {
        const bool isFirst = &title == &alert.buttons.front();
        const bool isLast = &title == &alert.buttons.back();
        QPushButton* const button =
            box->addButton(QString::fromStdString(title), isFirst  ? QMessageBox::AcceptRole
                                                          : isLast ? QMessageBox::RejectRole
                                                                   : QMessageBox::ActionRole);
        // The box arranges and lists its buttons by their roles.
        button->setProperty(responseProperty, response++);
        if (isFirst) box->setDefaultButton(button);
        if (isLast) box->setEscapeButton(button);
    }
    return box;
}

int alertResponse(const QMessageBox& box) {
    const QAbstractButton* const clicked = box.clickedButton();
    const QAbstractButton* const chosen = clicked != nullptr ? clicked : box.escapeButton();
    return chosen->property(responseProperty).toInt();
}

}  // namespace quorvel
