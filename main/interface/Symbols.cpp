#include "main/interface/Symbols.hpp"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

// Resources of a library are not registered by themselves.
static void registerSymbols() {
    Q_INIT_RESOURCE(symbols);
}

namespace quorvel::Symbols {
namespace {

class SymbolEngine final : public QIconEngine {
public:
    SymbolEngine(QString name, QByteArray drawing)
        : name(std::move(name)), drawing(std::move(drawing)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        constexpr double disabled = 0.4;
        QSvgRenderer renderer(drawing);
        if (mode == QIcon::Disabled) painter->setOpacity(painter->opacity() * disabled);
        renderer.render(painter, rect);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        const QString key =
            QStringLiteral("%1 %2 %3 %4").arg(name).arg(size.width()).arg(size.height()).arg(mode);
        QPixmap pixmap;
        // A column may have the same one a hundred times.
        if (QPixmapCache::find(key, &pixmap)) return pixmap;
        pixmap = QPixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        painter.end();
        QPixmapCache::insert(key, pixmap);
        return pixmap;
    }

    QIconEngine* clone() const override { return new SymbolEngine(name, drawing); }

private:
    QString name;  ///< with its colour
    QByteArray drawing;
};

}  // namespace

QIcon symbol(const QString& name, const QColor& colour) {
    registerSymbols();
    QFile file(QStringLiteral(":/symbols/") + name + QStringLiteral(".svg"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QString ink = colour.name();
    return QIcon(new SymbolEngine(QStringLiteral("symbol ") + name + ink,
                                  file.readAll().replace("currentColor", ink.toLatin1())));
}

}  // namespace quorvel::Symbols
