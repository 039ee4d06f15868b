#include "ui/controls/ApplicationIcon.h"

#include <QPainter>
#include <QSvgRenderer>

// The macro has to stand outside of every namespace.
static void registerImages() { Q_INIT_RESOURCE(images); } // NOLINT(misc-use-anonymous-namespace)

namespace ambertide {

namespace {

QString iconFile()
{
    static const bool isRegistered = (registerImages(), true);
    Q_UNUSED(isRegistered)
    return QStringLiteral(":/images/Icon.svg");
}

} // namespace

QIcon applicationIcon()
{
    // Drawn here rather than by Qt's plugin for SVG icons, which may not be installed.
    QSvgRenderer renderer(iconFile());
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        renderer.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

ApplicationIcon::ApplicationIcon(int size) { setFixedSize(size, size); }

void ApplicationIcon::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QSvgRenderer(iconFile()).render(&painter, rect());
}

} // namespace ambertide
