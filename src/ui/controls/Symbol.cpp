#include "ui/controls/Symbol.h"

#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

// The macro has to stand outside of every namespace.
static void registerSymbols() { Q_INIT_RESOURCE(symbols); } // NOLINT(misc-use-anonymous-namespace)

namespace ambertide {

namespace {

QPixmap render(QLatin1String symbol, int pixels, const QColor &color, const QColor &under)
{
    static const bool isRegistered = (registerSymbols(), true);
    Q_UNUSED(isRegistered)
    QFile file(QStringLiteral(":/symbols/%1.svg").arg(symbol));
    file.open(QIODevice::ReadOnly);
    QByteArray drawing = file.readAll();
    drawing.replace("currentColor", color.name().toLatin1());
    drawing.replace("surfaceColor", under.name().toLatin1());
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    QSvgRenderer(drawing).render(&painter);
    return pixmap;
}

} // namespace

void drawSymbol(QPainter &painter, const QRectF &square, QLatin1String symbol, const QColor &color, const QColor &under)
{
    const int pixels = qCeil(square.width() * painter.device()->devicePixelRatioF());
    const QString key = QStringLiteral("%1 %2 %3 %4").arg(symbol).arg(pixels).arg(color.rgb()).arg(under.rgb());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = render(symbol, pixels, color, under);
        QPixmapCache::insert(key, pixmap);
    }
    painter.drawPixmap(square, pixmap, pixmap.rect());
}

} // namespace ambertide
