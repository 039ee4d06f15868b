#include "ui/controls/TimeField.h"

#include "ui/controls/Button.h"
#include "ui/controls/Drawing.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QLocale>
#include <QRegularExpression>
#include <QStyleOptionSpinBox>

namespace ambertide {

namespace {

/// Makes the text lower-case, without spaces and dots.
QString bare(const QString &words)
{
    static const QRegularExpression filling(QStringLiteral(R"([\s.\p{Cf}])"));
    return words.toLower().remove(filling);
}

/// `mark` names the half of the day, as in "pm"; without one the hour counts to 24. Invalid if the two do not fit.
QTime timeOf(int hour, int minute, const QString &mark)
{
    const QLocale locale;
    const bool isMorning = mark == QLatin1String("a") || mark == QLatin1String("am") || mark == bare(locale.amText());
    const bool isAfternoon = mark == QLatin1String("p") || mark == QLatin1String("pm") || mark == bare(locale.pmText());
    if (isMorning)
        return hour <= 12 ? QTime(hour % 12, minute) : QTime();
    if (isAfternoon)
        return hour > 0 ? QTime(hour <= 12 ? hour % 12 + 12 : hour, minute) : QTime();
    if (!mark.isEmpty() && mark != QLatin1String("h") && mark != QLatin1String("uhr"))
        return {};
    return hour == 24 && minute == 0 ? QTime(0, 0) : QTime(hour, minute);
}

std::optional<QTime> timeIn(QString text)
{
    for (QChar &character : text) {
        if (character.isDigit())
            character = QLatin1Char(static_cast<char>('0' + character.digitValue()));
    }
    static const QRegularExpression pattern(
        QStringLiteral(R"(^(\D*?)([0-9]{1,2})(?:(?:\s*[:.,h]\s*|\s+)?([0-9]{2})|\s*[:.,h])?(\D*)$)"),
        QRegularExpression::CaseInsensitiveOption);
    const auto found = pattern.match(text);
    if (!found.hasMatch())
        return std::nullopt;
    // Some languages put the mark first.
    const QTime time = timeOf(found.capturedView(2).toInt(), found.capturedView(3).toInt(),
                              bare(found.captured(1) + found.captured(4)));
    return time.isValid() ? std::optional(time) : std::nullopt;
}

} // namespace

TimeField::TimeField(const QString &accessibleName)
{
    // stepBy() relies on the minutes being right after the colon in both.
    m_format =
        QLocale().timeFormat(QLocale::ShortFormat).contains(u'H') ? QStringLiteral("HH:mm") : QStringLiteral("h:mm Ap");
    setLayoutDirection(Qt::LeftToRight); // otherwise hour and minute would change places
    setButtonSymbols(NoButtons);
    setKeyboardTracking(false); // there is no value of the base class's to track
    setAlignment(Qt::AlignCenter);
    setAccessibleName(accessibleName);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(lineEdit(), &QLineEdit::textChanged, this, &TimeField::read);

    auto *line = new QHBoxLayout(this);
    line->setDirection(QGuiApplication::isRightToLeft() ? QBoxLayout::RightToLeft : QBoxLayout::LeftToRight);
    line->setContentsMargins(fieldEndPadding, 0, fieldEndPadding, 0);
    line->setSpacing(0);
    line->addStretch();
    line->addWidget(chevron(symbols::chevronDown, tr("Earlier"), -1));
    line->addWidget(chevron(symbols::chevronUp, tr("Later"), 1));
}

void TimeField::setTime(const QTime &time) { lineEdit()->setText(QLocale().toString(time, m_format)); }

void TimeField::read(const QString &text)
{
    m_time = timeIn(text);
    m_lastTime = m_time.value_or(m_lastTime);
    showInk();
    const QString complaint = m_time ? QString() : tr("This is no time of day");
    setToolTip(complaint);
    setAccessibleDescription(complaint);
    update();
    Q_EMIT timeChanged();
}

void TimeField::showInk()
{
    QPalette inks;
    inks.setColor(QPalette::Base, Qt::transparent);
    if (!m_time)
        inks.setColor(QPalette::Text, Theme::of(QGuiApplication::palette()).redText);
    lineEdit()->setPalette(inks);
}

bool TimeField::event(QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange)
        showInk();
    return QAbstractSpinBox::event(event);
}

void TimeField::stepBy(int steps)
{
    constexpr int minute = 60; // s
    auto *text = lineEdit();
    const int cursor = text->hasSelectedText() ? text->selectionStart() : text->cursorPosition();
    setTime(m_lastTime);
    const auto colon = text->text().indexOf(u':');
    const auto endOfMinutes = colon + 3;
    const bool isHour = cursor <= colon;
    const bool isMinute = !isHour && cursor <= endOfMinutes;
    setTime(m_lastTime.addSecs(steps * (isMinute ? minute : isHour ? 60 * minute : 12 * 60 * minute)));
    const auto newColon = static_cast<int>(text->text().indexOf(u':'));
    if (isHour)
        text->setSelection(0, newColon);
    else if (isMinute)
        text->setSelection(newColon + 1, 2);
    else
        text->setSelection(newColon + 4, static_cast<int>(text->text().size()));
}

QSize TimeField::sizeHint() const
{
    constexpr int roomInEditor = 5; // which a QLineEdit keeps free beside the text, and for its cursor
    int width = 0;
    for (const int hour : {10, 22})
        width = qMax(width, fontMetrics().horizontalAdvance(QLocale().toString(QTime(hour, 0), m_format)));
    QStyleOptionSpinBox option;
    initStyleOption(&option);
    return style()->sizeFromContents(QStyle::CT_SpinBox, &option, {width + roomInEditor, fontMetrics().height()}, this);
}

void TimeField::focusOutEvent(QFocusEvent *event)
{
    QAbstractSpinBox::focusOutEvent(event);
    if (m_time)
        setTime(*m_time);
}

QWidget *TimeField::chevron(QLatin1String symbol, const QString &name, int steps)
{
    auto *button = new Button(name, {.kind = Button::Kind::Icon,
                                     .symbol = symbol,
                                     .symbolSize = fieldChevron,
                                     .paddingX = fieldChevronPadding,
                                     .paddingY = fieldChevronPadding,
                                     .ink = &Theme::secondaryText,
                                     .hoverInk = &Theme::text});
    button->setAutoRepeat(true);
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &Button::clicked, this, [this, steps] { stepBy(steps); });
    return button;
}

} // namespace ambertide
