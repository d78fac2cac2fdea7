#include "main/interface/Symbols.hpp"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>

// Resources of a library are not registered by themselves.
static void registerSymbols() {
    Q_INIT_RESOURCE(symbols);
}

namespace quorvel::Symbols {
namespace {

class SymbolEngine final : public QIconEngine {
public:
    explicit SymbolEngine(QByteArray drawing) : drawing(std::move(drawing)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        constexpr double disabled = 0.4;
        QSvgRenderer renderer(drawing);
        if (mode == QIcon::Disabled) painter->setOpacity(painter->opacity() * disabled);
        renderer.render(painter, rect);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    QIconEngine* clone() const override { return new SymbolEngine(drawing); }

private:
    QByteArray drawing;
};

}  // namespace

QIcon symbol(const QString& name, const QColor& colour) {
    registerSymbols();
    QFile file(QStringLiteral(":/symbols/") + name + QStringLiteral(".svg"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return QIcon(
        new SymbolEngine(file.readAll().replace("currentColor", colour.name().toLatin1())));
}

}  // namespace quorvel::Symbols
