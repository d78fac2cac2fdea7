#include "tests/pictures/Look.hpp"

#include <QApplication>
#include <QStyle>

namespace quorvel::pictures {
namespace {

QPalette dark() {
    const QColor text(0xFC, 0xFC, 0xFC);
    const QColor faint(0x7A, 0x7F, 0x83);
    QPalette palette(QColor(0x31, 0x36, 0x3B), QColor(0x2A, 0x2E, 0x32));
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Base, QColor(0x1B, 0x1E, 0x20));
    palette.setColor(QPalette::AlternateBase, QColor(0x23, 0x26, 0x29));
    palette.setColor(QPalette::ToolTipBase, QColor(0x31, 0x36, 0x3B));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Highlight, QColor(0x3D, 0xAE, 0xE9));
    palette.setColor(QPalette::HighlightedText, text);
    palette.setColor(QPalette::Link, QColor(0x1D, 0x99, 0xF3));
    palette.setColor(QPalette::PlaceholderText, QColor(0xA1, 0xA9, 0xB1));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, faint);
    }
    return palette;
}

}  // namespace

std::vector<Look> looks() {
    return {{QStringLiteral("light"), QApplication::style()->standardPalette()},
            {QStringLiteral("dark"), dark()}};
}

void wear(const Look& look) {
    QApplication::setPalette(look.palette);
    QCoreApplication::sendPostedEvents();
}

void wearOther() {
    const bool wasLight = QApplication::palette() == looks().front().palette;
    wear(wasLight ? looks().back() : looks().front());
}

}  // namespace quorvel::pictures
