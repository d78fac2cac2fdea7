#pragma once

#include <QProxyStyle>

namespace quorvel {

/// The toolkit's own style, with outlines of radio buttons and check boxes that are seen on a dark
/// ground too: it draws them darker than the window, whatever that is.
class IndicatorStyle final : public QProxyStyle {
public:
    IndicatorStyle() : QProxyStyle(QStringLiteral("fusion")) {}

    /// Where the application has that style, gives it this one.
    static void install();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

}  // namespace quorvel
