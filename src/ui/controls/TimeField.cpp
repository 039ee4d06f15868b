#include "ui/controls/TimeField.h"

#include "ui/controls/Button.h"
#include "ui/controls/Drawing.h"

#include <QGuiApplication>
#include <QLineEdit>
#include <QVBoxLayout>

namespace ambertide {

TimeField::TimeField(const QString &accessibleName)
{
    constexpr int endPadding = 4;        // logical pixels
    setLayoutDirection(Qt::LeftToRight); // else it would turn hour and minute round
    setDisplayFormat(QStringLiteral("h:mm AP"));
    setButtonSymbols(NoButtons);
    setWrapping(true);
    setAlignment(Qt::AlignCenter);
    setAccessibleName(accessibleName);
    QPalette clear;
    clear.setColor(QPalette::Base, Qt::transparent);
    lineEdit()->setPalette(clear);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);

    auto *chevrons = new QVBoxLayout;
    chevrons->setSpacing(0);
    chevrons->addStretch();
    chevrons->addWidget(chevron(symbols::chevronUp, tr("Later"), &QTimeEdit::stepUp));
    chevrons->addWidget(chevron(symbols::chevronDown, tr("Earlier"), &QTimeEdit::stepDown));
    chevrons->addStretch();
    auto *line = new QHBoxLayout(this);
    line->setDirection(QGuiApplication::isRightToLeft() ? QBoxLayout::RightToLeft : QBoxLayout::LeftToRight);
    line->setContentsMargins(endPadding, 0, endPadding, 0);
    line->addStretch();
    line->addLayout(chevrons);
}

QWidget *TimeField::chevron(QLatin1String symbol, const QString &name, void (QTimeEdit::*step)())
{
    constexpr int padding = 1;
    auto *button = new Button(name, {.kind = Button::Kind::Icon,
                                     .symbol = symbol,
                                     .symbolSize = fieldChevron,
                                     .paddingX = padding,
                                     .paddingY = padding,
                                     .ink = &Theme::secondaryText,
                                     .hoverInk = &Theme::text});
    button->setAutoRepeat(true);
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &Button::clicked, this, step);
    return button;
}

} // namespace ambertide
