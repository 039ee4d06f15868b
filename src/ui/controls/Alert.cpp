#include "ui/controls/Alert.h"

#include "ui/controls/Button.h"

#include <QVBoxLayout>

namespace ambertide {

namespace {

constexpr int width = 320;
constexpr int padding = 16;
constexpr int gap = 8;
constexpr int longestMessage = 600; // characters

/// Lets long text without blanks, such as a path, be broken into lines.
QString breakable(const QString &text)
{
    constexpr int longestWord = 24;
    constexpr QChar zeroWidthSpace(0x200b);
    QString broken;
    int lengthOfWord = 0;
    for (const QChar character : text) {
        lengthOfWord = character.isSpace() ? 0 : lengthOfWord + 1;
        broken += character;
        if (lengthOfWord >= longestWord && !character.isHighSurrogate())
            broken += zeroWidthSpace;
    }
    return broken;
}

} // namespace

Sheet *showAlert(QWidget &host, const QString &title, const QString &message, const QString &button)
{
    const QString shown = message.size() > longestMessage ? message.left(longestMessage) + QChar(0x2026) : message;
    auto *text = new TextLabel(breakable(shown));
    auto *dismiss = new Button(button, Button::Kind::Prominent);
    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(gap);
    for (auto *label : {new TextLabel(title, TextStyle::Headline), text}) {
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignHCenter);
        column->addWidget(label);
    }
    column->addSpacing(gap);
    column->addWidget(dismiss, 0, Qt::AlignHCenter);

    auto *sheet = new Sheet(host, content, {width, 0}, title + QLatin1Char('\n') + shown);
    QObject::connect(dismiss, &Button::clicked, sheet, &Sheet::dismiss);
    QObject::connect(sheet, &Sheet::cancelled, sheet, &Sheet::dismiss);
    return sheet;
}

} // namespace ambertide
