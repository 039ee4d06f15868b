#include "update/ui/UpdatePage.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace ambertide {

namespace {

constexpr int margin = 24;
constexpr int gap = 12;
constexpr double headingScale = 1.25;

QLabel *plainLabel(const QString &text)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

UpdatePage::UpdatePage(const QString &heading, const QString &sentence, QWidget *parent)
    : QWidget(parent), m_content(new QVBoxLayout), m_aside(new QHBoxLayout), m_row(new QHBoxLayout)
{
    auto *headingLabel = plainLabel(heading);
    QFont font = headingLabel->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * headingScale);
    headingLabel->setFont(font);

    auto *buttons = new QHBoxLayout;
    buttons->addLayout(m_aside);
    buttons->addStretch();
    buttons->addLayout(m_row);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(gap);
    layout->addWidget(headingLabel);
    if (!sentence.isEmpty())
        layout->addWidget(plainLabel(sentence));
    layout->addLayout(m_content, 1);
    layout->addSpacing(gap);
    layout->addLayout(buttons);
}

void UpdatePage::addContent(QWidget *content) { m_content->addWidget(content); }

QPushButton *UpdatePage::addButton(const QString &text, Place place)
{
    auto *button = new QPushButton(text);
    button->setAutoDefault(false);
    (place == Place::Aside ? m_aside : m_row)->addWidget(button);
    return button;
}

} // namespace ambertide
