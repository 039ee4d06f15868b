#include "ui/controls/TimeField.h"

#include "ui/controls/Button.h"
#include "ui/controls/Drawing.h"
#include "ui/controls/Symbol.h"
#include "ui/controls/Theme.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QTimeEdit>
#include <QVBoxLayout>

namespace ambertide {

namespace {

constexpr int paddingX = 8;
constexpr int paddingY = 3;
constexpr int chevronSize = 9;

/// Steps the part that is selected and leaves the focus where it is.
QWidget *chevron(QLatin1String symbol, const QString &name, QTimeEdit *edit, void (QTimeEdit::*step)())
{
    auto *button =
        new IconButton({.symbol = symbol, .symbolSize = chevronSize, .padding = 1, .hoverInk = &Theme::text}, name);
    button->setAutoRepeat(true);
    button->setFocusPolicy(Qt::NoFocus);
    QObject::connect(button, &QPushButton::clicked, edit, step);
    return button;
}

} // namespace

TimeField::TimeField(const QString &accessibleName) : m_edit(new QTimeEdit)
{
    m_edit->setLayoutDirection(Qt::LeftToRight); // else it would turn hour and minute round
    m_edit->setDisplayFormat(QStringLiteral("h:mm AP"));
    m_edit->setButtonSymbols(QAbstractSpinBox::NoButtons);
    m_edit->setFrame(false);
    m_edit->setWrapping(true);
    m_edit->setAlignment(Qt::AlignCenter);
    m_edit->setAccessibleName(accessibleName);
    m_edit->installEventFilter(this);
    setFocusProxy(m_edit);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(m_edit, &QTimeEdit::timeChanged, this, &TimeField::timeChanged);

    auto *chevrons = new QVBoxLayout;
    chevrons->setSpacing(0);
    chevrons->addWidget(chevron(symbols::chevronUp, tr("Later"), m_edit, &QTimeEdit::stepUp));
    chevrons->addWidget(chevron(symbols::chevronDown, tr("Earlier"), m_edit, &QTimeEdit::stepDown));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(paddingX, paddingY, paddingY + 1, paddingY);
    layout->setSpacing(4);
    layout->addWidget(m_edit);
    layout->addLayout(chevrons);
    follow();
}

QTime TimeField::time() const { return m_edit->time(); }

void TimeField::setTime(const QTime &time) { m_edit->setTime(time); }

bool TimeField::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::ApplicationFontChange)
        follow();
    return QWidget::event(event);
}

bool TimeField::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        update();
    return QWidget::eventFilter(watched, event);
}

void TimeField::follow()
{
    m_edit->setFont(textFont(TextStyle::Body));
    QPalette palette;
    palette.setColor(QPalette::Base, Qt::transparent);
    m_edit->setPalette(palette);
}

void TimeField::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    fillRounded(painter, rect(), controlRadius, theme.button);
    strokeRounded(painter, rect(), controlRadius, theme.buttonOutline);
    if (m_edit->hasFocus())
        drawFocusRing(painter, rect(), controlRadius, theme.accent);
}

} // namespace ambertide
