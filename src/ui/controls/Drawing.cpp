#include "ui/controls/Drawing.h"

#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QRadialGradient>
#include <QSvgRenderer>
#include <QWidget>

// The macro has to stand outside of every namespace.
static void registerSymbols() { Q_INIT_RESOURCE(symbols); } // NOLINT(misc-use-anonymous-namespace)

namespace ambertide {

namespace {

QPixmap render(QLatin1String symbol, int pixels, const QColor &color)
{
    static const bool isRegistered = (registerSymbols(), true);
    Q_UNUSED(isRegistered)
    QFile file(QStringLiteral(":/symbols/%1.svg").arg(symbol));
    file.open(QIODevice::ReadOnly);
    QByteArray drawing = file.readAll();
    drawing.replace("currentColor", color.name().toLatin1());
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    QSvgRenderer(drawing).render(&painter);
    return pixmap;
}

} // namespace

double hairlineWidth(const QPainter &painter) { return 1 / painter.device()->devicePixelRatioF(); }

QRectF onPixels(const QPainter &painter, const QRectF &shape)
{
    const QTransform toDevice = painter.deviceTransform();
    return toDevice.inverted().mapRect(QRectF(toDevice.mapRect(shape).toRect()));
}

void drawSymbol(QPainter &painter, const QRectF &square, QLatin1String symbol, const QColor &color)
{
    const QRectF target = onPixels(painter, square);
    const int pixels = qRound(target.width() * painter.device()->devicePixelRatioF());
    const QString key = QStringLiteral("%1 %2 %3").arg(symbol).arg(pixels).arg(color.rgb());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = render(symbol, pixels, color);
        QPixmapCache::insert(key, pixmap);
    }
    painter.drawPixmap(target, pixmap, pixmap.rect());
}

bool showsFocusRing(const QWidget &control)
{
    return control.hasFocus() && control.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void drawFocusRing(QPainter &painter, const QRectF &outline, double radius, const QColor &color)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(outline.adjusted(1, 1, -1, -1), radius, radius);
}

void fillRounded(QPainter &painter, const QRectF &shape, double radius, const QColor &fill)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(shape, radius, radius);
}

void strokeRounded(QPainter &painter, const QRectF &shape, double radius, const QColor &stroke)
{
    const double width = hairlineWidth(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(stroke, width));
    painter.setBrush(Qt::NoBrush);
    const double half = width / 2;
    painter.drawRoundedRect(onPixels(painter, shape).adjusted(half, half, -half, -half), radius - half, radius - half);
}

void drawShadow(QPainter &painter, const QRectF &surface, double radius, bool isDark)
{
    // Many faint layers, each a little larger: their edges add up to a slope.
    constexpr int layers = 20;
    constexpr double drop = 6;
    const double opacity = isDark ? 0.45 : 0.17;
    QColor ink = Qt::black;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    for (int layer = 0; layer < layers; ++layer) {
        const double share = static_cast<double>(layer) / layers; // 0 for the outermost
        const double reach = layers * (1 - share);
        ink.setAlphaF(static_cast<float>(opacity * 2 * share / layers));
        painter.setBrush(ink);
        painter.drawRoundedRect(surface.adjusted(-reach, drop - reach, reach, drop + reach), radius + reach,
                                radius + reach);
    }
}

void drawThumb(QPainter &painter, const QRectF &disc, bool isOutlined)
{
    constexpr double blur = 2; // logical pixels, as is the offset
    constexpr double offset = 1;
    constexpr float shadowOpacity = 0.15F;
    constexpr float faintOutline = 0.08F;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double radius = disc.width() / 2;
    const QPointF shadowCentre = disc.center() + QPointF(0, offset);
    QRadialGradient shadow(shadowCentre, radius + blur);
    QColor ink = Qt::black;
    ink.setAlphaF(shadowOpacity * 2);
    shadow.setColorAt((radius - blur) / (radius + blur), ink);
    ink.setAlphaF(shadowOpacity);
    shadow.setColorAt(radius / (radius + blur), ink);
    ink.setAlphaF(0);
    shadow.setColorAt(1, ink);
    painter.setBrush(shadow);
    painter.drawEllipse(shadowCentre, radius + blur, radius + blur);
    painter.setBrush(Qt::white);
    painter.drawEllipse(disc);
    ink.setAlphaF(isOutlined ? 1 : faintOutline);
    painter.setPen(QPen(ink, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(isOutlined ? disc.adjusted(0.5, 0.5, -0.5, -0.5) : disc);
}

} // namespace ambertide
