#include "ui/controls/HouseStyle.h"

#include "ui/controls/ControlDrawing.h"
#include "ui/controls/Drawing.h"
#include "ui/controls/TimeField.h"

#include <QApplication>
#include <QEvent>
#include <QFrame>
#include <QPainter>
#include <QScrollBar>
#include <QTabBar>

namespace ambertide {

namespace {

constexpr int scrollBarExtent = 10; // logical pixels
constexpr int toolTipPadding = 5;

/// Wherever this is called, Qt and our own controls pass an option of this class.
template <typename Option>
const Option &as(const QStyleOption *option)
{
    return *static_cast<const Option *>(option);
}

/// Labels set their own size.
void setTextSize(QWidget &control)
{
    if (qobject_cast<QTabBar *>(&control) != nullptr)
        control.setFont(textFont(TextStyle::Subheadline));
    else if (qobject_cast<QAbstractButton *>(&control) != nullptr || qobject_cast<TimeField *>(&control) != nullptr)
        control.setFont(textFont(TextStyle::Body));
}

QRect scrollBarPart(const QStyleOptionSlider &bar, QStyle::SubControl part)
{
    const QRect groove = bar.rect;
    const QRect thumb = scrollThumb(bar);
    const bool isHorizontal = bar.orientation == Qt::Horizontal;
    const bool isMirrored = isHorizontal && bar.direction == Qt::RightToLeft;
    const QRect before(groove.topLeft(), isHorizontal ? thumb.bottomLeft() : thumb.topRight());
    const QRect behind(isHorizontal ? thumb.topRight() : thumb.bottomLeft(), groove.bottomRight());
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return groove;
    case QStyle::SC_ScrollBarSlider:
        return thumb;
    case QStyle::SC_ScrollBarSubPage:
        return isMirrored ? behind : before;
    case QStyle::SC_ScrollBarAddPage:
        return isMirrored ? before : behind;
    default:
        return {};
    }
}

} // namespace

HouseStyle::HouseStyle() : QProxyStyle(QStringLiteral("Fusion")), m_nextFrame(new QTimer(this))
{
    constexpr int frame = 16; // ms
    m_clock.start();
    m_nextFrame->setSingleShot(true);
    m_nextFrame->setInterval(frame);
}

void HouseStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    setTextSize(*widget);
    if (widget->inherits("QTipLabel")) {
        widget->setPalette(QApplication::palette());
        widget->setFont(textFont(TextStyle::Subheadline));
    } else if (widget->isWindow()) {
        widget->installEventFilter(this);
    } else if (qobject_cast<QScrollBar *>(widget) != nullptr) {
        widget->setAttribute(Qt::WA_OpaquePaintEvent, false); // what is below shows through, rounded corners included
    }
}

void HouseStyle::polish(QPalette &palette)
{
    QProxyStyle::polish(palette);
    setAccent(palette);
}

bool HouseStyle::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ApplicationFontChange || event->type() == QEvent::ApplicationPaletteChange) {
        const auto controls = watched->findChildren<QWidget *>();
        for (auto *control : controls) {
            QCoreApplication::sendEvent(control, event);
            setTextSize(*control);
        }
    }
    return QProxyStyle::eventFilter(watched, event);
}

int HouseStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                          QStyleHintReturn *returned) const
{
    switch (hint) {
    case SH_Widget_Animation_Duration:
        return m_isMotionReduced ? 0 : QProxyStyle::styleHint(hint, option, widget, returned);
    case SH_Slider_AbsoluteSetButtons:
        return Qt::LeftButton;
    case SH_TabBar_Alignment:
        return Qt::AlignCenter;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

int HouseStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_ToolTipLabelFrameWidth:
        return toolTipPadding;
    case PM_SliderLength:
        return sliderThumb;
    case PM_SliderControlThickness:
    case PM_SliderThickness:
        return sliderThumb + 2 * sliderRingGap;
    case PM_ScrollBarExtent:
        return scrollBarExtent;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

QSize HouseStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                                   const QWidget *widget) const
{
    if (type == CT_TabBarTab)
        return tabSize(as<QStyleOptionTab>(option));
    if (const auto *button = qobject_cast<const Button *>(widget); button != nullptr && type == CT_PushButton)
        return buttonSize(as<QStyleOptionButton>(option), button->look());
    if (const auto *row = qobject_cast<const SwitchRow *>(widget); row != nullptr && type == CT_CheckBox)
        return switchSize(as<QStyleOptionButton>(option), row->kind());
    if (type == CT_SpinBox)
        return timeFieldSize(contents);
    const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    // The base style keeps the same room beside the text for every size of text, and cuts it where it is large.
    return type == CT_MenuItem ? size + QSize(option->fontMetrics.height(), 0) : size;
}

QRect HouseStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                                 const QWidget *widget) const
{
    switch (control) {
    case CC_ScrollBar:
        return scrollBarPart(as<QStyleOptionSlider>(option), part);
    case CC_Slider:
        return part == SC_SliderHandle ? sliderHandle(as<QStyleOptionSlider>(option))
                                       : sliderGroove(as<QStyleOptionSlider>(option));
    case CC_SpinBox:
        return part == SC_SpinBoxEditField ? timeFieldText(option->rect) : QRect();
    default:
        return QProxyStyle::subControlRect(control, option, part, widget);
    }
}

void HouseStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                               const QWidget *widget) const
{
    if (element == PE_PanelScrollAreaCorner)
        return;
    if (element != PE_PanelTipLabel)
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    const auto theme = Theme::of(option->palette);
    painter->fillRect(option->rect, theme.card);
    strokeRounded(*painter, option->rect, 0, theme.buttonOutline);
}

void HouseStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                             const QWidget *widget) const
{
    const auto *button = qobject_cast<const Button *>(widget);
    const auto *row = qobject_cast<const SwitchRow *>(widget);
    const auto *tabs = qobject_cast<const QTabBar *>(widget);
    const auto *frame = qobject_cast<const QFrame *>(widget);
    if (element == CE_PushButton && button != nullptr) {
        drawButton(*painter, as<QStyleOptionButton>(option), button->look());
    } else if (element == CE_CheckBox && row != nullptr) {
        drawSwitch(*painter, as<QStyleOptionButton>(option), *row);
    } else if (element == CE_TabBarTab && tabs != nullptr) {
        const auto &tab = as<QStyleOptionTab>(option);
        drawTab(*painter, tab, tabs->tabData(tab.tabIndex).value<QLatin1String>());
    } else if (element == CE_ProgressBar) {
        const auto &bar = as<QStyleOptionProgressBar>(option);
        drawProgressBar(*painter, bar, isBusy(bar) ? sweep(*option) : std::nullopt);
    } else if (element == CE_ShapedFrame && frame != nullptr && frame->frameShape() == QFrame::HLine) {
        QRectF line = option->rect;
        line.setHeight(hairlineWidth(*painter));
        painter->fillRect(line, Theme::of(option->palette).hairline);
    } else {
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void HouseStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                    const QWidget *widget) const
{
    switch (control) {
    case CC_ScrollBar:
        return drawScrollBar(*painter, as<QStyleOptionSlider>(option));
    case CC_Slider:
        return drawSlider(*painter, as<QStyleOptionSlider>(option));
    case CC_SpinBox: {
        const auto *field = qobject_cast<const TimeField *>(widget);
        return drawTimeField(*painter, *option, field == nullptr || field->time());
    }
    default:
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

/// How far the motion of a busy bar has come, 0 to 1; also has the bar drawn again for the next frame. Nothing if
/// motion is unwanted.
std::optional<double> HouseStyle::sweep(const QStyleOption &busyBar) const
{
    constexpr qint64 duration = 1600; // ms
    auto *bar = qobject_cast<QWidget *>(busyBar.styleObject);
    if (bar == nullptr || styleHint(SH_Widget_Animation_Duration, &busyBar, bar, nullptr) <= 0)
        return std::nullopt;
    // A bar that is out of sight is not drawn, and so asks for no further frame.
    connect(m_nextFrame, &QTimer::timeout, bar, qOverload<>(&QWidget::update), Qt::UniqueConnection);
    if (!m_nextFrame->isActive())
        m_nextFrame->start();
    return static_cast<double>(m_clock.elapsed() % duration) / duration;
}

} // namespace ambertide
