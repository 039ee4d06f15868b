#include "ui/updates/UpdatePage.h"

#include "ui/controls/ApplicationIcon.h"
#include "ui/controls/Button.h"
#include "ui/controls/TextLabel.h"

#include <QHBoxLayout>

namespace ambertide {

namespace {

// Logical pixels. The visible parts of the icon and of a button begin somewhat inside their edges.
constexpr int margin = 20;
constexpr int iconInset = 4;
constexpr int buttonInset = 2;
constexpr int gap = 12;
constexpr int smallGap = 8;
constexpr int iconGap = 12;
constexpr int iconSize = 64;

TextLabel *wrappedLabel(const QString &text, TextStyle style)
{
    auto *label = new TextLabel(text, style);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

UpdatePage::UpdatePage(const QString &heading, const QString &sentence, QWidget *parent)
    : QWidget(parent), m_texts(new QVBoxLayout), m_across(new QVBoxLayout), m_aside(new QHBoxLayout),
      m_row(new QHBoxLayout)
{
    setAccessibleName(heading);
    setAccessibleDescription(sentence);

    m_texts->setSpacing(smallGap);
    m_texts->addWidget(wrappedLabel(heading, TextStyle::Title3));
    if (!sentence.isEmpty())
        m_texts->addWidget(wrappedLabel(sentence, TextStyle::Body));

    auto *top = new QHBoxLayout;
    top->setSpacing(iconGap);
    top->addWidget(new ApplicationIcon(iconSize), 0, Qt::AlignTop);
    auto *centred = new QVBoxLayout;
    centred->addStretch();
    centred->addLayout(m_texts);
    centred->addStretch();
    top->addLayout(centred, 1);
    top->addSpacing(iconInset);

    m_across->setContentsMargins(iconInset, 0, iconInset, 0);

    auto *buttons = new QHBoxLayout;
    buttons->setContentsMargins(iconInset - buttonInset, 0, iconInset - buttonInset, 0);
    for (auto *part : {m_aside, m_row})
        part->setSpacing(smallGap);
    buttons->addLayout(m_aside);
    buttons->addStretch();
    buttons->addLayout(m_row);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin - iconInset, margin - iconInset, margin - iconInset, margin - buttonInset);
    layout->setSpacing(gap);
    layout->addLayout(top);
    layout->addLayout(m_across, 1);
    layout->addLayout(buttons);
}

void UpdatePage::addUnderTexts(QWidget *content) { m_texts->addWidget(content); }

void UpdatePage::addAcross(QWidget *content) { m_across->addWidget(content); }

Button *UpdatePage::addButton(const QString &text, Place place)
{
    auto *button = new Button(text);
    (place == Place::Aside ? m_aside : m_row)->addWidget(button);
    return button;
}

Button *UpdatePage::addDefaultButton(const QString &text)
{
    m_default = new Button(text, Button::Kind::Prominent);
    m_default->setDefault(true);
    // A screen reader reads this with the button, which gets the focus when the page is shown.
    m_default->setAccessibleDescription(accessibleName() + u'\n' + accessibleDescription());
    m_row->addWidget(m_default);
    return m_default;
}

void UpdatePage::takeFocus()
{
    if (m_default != nullptr)
        m_default->setFocus();
    else
        setFocus();
}

} // namespace ambertide
