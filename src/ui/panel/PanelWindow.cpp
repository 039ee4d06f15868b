#include "ui/panel/PanelWindow.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/Theme.h"
#include "ui/panel/PanelGeometry.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

namespace ambertide {

namespace {

Qt::WindowFlags flagsFor(PanelPlacement::Manner manner)
{
    switch (manner) {
    case PanelPlacement::Manner::Popup:
        return Qt::Popup | Qt::FramelessWindowHint;
    case PanelPlacement::Manner::Layer:
        return Qt::Window | Qt::FramelessWindowHint;
    case PanelPlacement::Manner::Window:
        break;
    }
    return Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint;
}

} // namespace

PanelWindow::PanelWindow(QWidget *content, PanelPlacement &placement, PanelPlacement::Manner manner)
    : QWidget(nullptr, flagsFor(manner)), m_placement(placement), m_manner(manner),
      m_cornerRadius(placement.cornerRadius()), m_isSeeThrough(!isFramed() && placement.hasTransparency()),
      m_shadow(m_isSeeThrough ? shadowMargins : QMargins())
{
    setWindowTitle(QStringLiteral("Ambertide"));
    setAttribute(Qt::WA_TranslucentBackground, m_isSeeThrough);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(m_shadow); // as the window's own they would count in the width that is laid out
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(content);
}

void PanelWindow::open(std::optional<QPoint> place)
{
    if (!isVisible())
        moveBesideIcon(place);
    if (isMinimized())
        showNormal();
    show();
    raise();
    activateWindow();
}

void PanelWindow::moveBesideIcon(std::optional<QPoint> place)
{
    adjustSize();
    if (m_manner == PanelPlacement::Manner::Layer) {
        create();
        m_placement.anchor(*windowHandle(), m_shadow, place);
        return;
    }
    if (m_manner == PanelPlacement::Manner::Window)
        return;
    const auto *screen = place ? QGuiApplication::screenAt(*place) : nullptr;
    if (screen == nullptr)
        screen = QGuiApplication::primaryScreen();
    if (screen != nullptr)
        move(
            panelPosition(surface().size(), place, screen->geometry(), screen->availableGeometry(), m_placement.gap()) -
            surface().topLeft());
}

bool PanelWindow::event(QEvent *event)
{
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::WindowDeactivate && m_manner == PanelPlacement::Manner::Layer)
        close();
    return isHandled;
}

void PanelWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void PanelWindow::mousePressEvent(QMouseEvent *event)
{
    if (!surface().contains(event->position().toPoint()))
        close(); // a press on the shadow or further away is a press beside the panel
}

void PanelWindow::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (!event->spontaneous())
        Q_EMIT closed();
}

void PanelWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (isVisible() && m_manner == PanelPlacement::Manner::Popup) {
        // In the lower half of the screen it grows upwards, and at its right edge to the left.
        auto corner = pos();
        if (geometry().center().y() > screen()->geometry().center().y())
            corner.ry() += event->oldSize().height() - height();
        const int beyond = geometry().right() - m_shadow.right() - screen()->availableGeometry().right();
        corner.rx() -= qMax(0, beyond);
        move(corner);
    }
    if (isFramed() || m_isSeeThrough)
        return;
    QBitmap shape(size());
    shape.clear();
    QPainter painter(&shape);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::color1);
    painter.drawRoundedRect(rect(), m_cornerRadius, m_cornerRadius);
    painter.end();
    setMask(shape);
}

void PanelWindow::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    if (isFramed())
        return painter.fillRect(rect(), theme.panel);
    const QRectF panel = surface();
    if (m_isSeeThrough) {
        // Qt 6.8 on Wayland may keep what was painted before, and then a second shadow would be painted over the first.
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(rect(), Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        drawShadow(painter, panel, m_cornerRadius, theme.isDark);
        fillRounded(painter, panel, m_cornerRadius, theme.panel);
    } else {
        painter.fillRect(panel, theme.panel);
    }
    strokeRounded(painter, panel, m_cornerRadius, theme.buttonOutline);
}

} // namespace ambertide
