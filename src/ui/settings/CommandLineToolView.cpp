#include "ui/settings/CommandLineToolView.h"

#include "ui/controls/Button.h"
#include "ui/controls/ProgressBar.h"
#include "ui/controls/TextLabel.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace ambertide {

namespace {

constexpr int paddingX = 14;
constexpr int paddingY = 10;
constexpr int lineGap = 2;
constexpr int usageGap = 4;
constexpr int buttonGap = 8;

TextLabel *caption(const QString &text)
{
    auto *label = new TextLabel(text, TextStyle::Caption, &Theme::secondaryText);
    label->setWordWrap(true);
    return label;
}

} // namespace

CommandLineToolView::CommandLineToolView()
    : m_button(new Button({})), m_progress(new ProgressBar(tr("Waiting for the system"))), m_usage(new QWidget)
{
    auto *usage = new QVBoxLayout(m_usage);
    usage->setContentsMargins(paddingX, usageGap, paddingX, usageGap);
    usage->setSpacing(usageGap);
    usage->addWidget(caption(tr("Usage:")));
    for (const auto &command : {QStringLiteral("ambertide set <temperature>"), QStringLiteral("ambertide get")}) {
        auto *line = caption(command);
        line->setTextInteractionFlags(Qt::TextSelectableByMouse);
        usage->addWidget(line);
    }

    auto *title = new QVBoxLayout;
    title->setSpacing(lineGap);
    auto *name = new TextLabel(tr("Command Line Tool"), TextStyle::Headline);
    name->setWordWrap(true); // for large text
    title->addWidget(name);
    title->addWidget(caption(tr("Control Ambertide from Terminal")));
    auto *head = new QHBoxLayout;
    head->setSpacing(0);
    head->addSpacing(paddingX);
    head->addLayout(title, 1);
    head->addSpacing(buttonGap);
    auto *place = new QGridLayout; // the button's, in which the bar is shown instead of it
    place->addWidget(m_button, 0, 0);
    place->addWidget(m_progress, 0, 0, Qt::AlignVCenter);
    head->addLayout(place);
    head->addSpacing(paddingX - Button::ringGap);
    auto keepsPlace = m_button->sizePolicy();
    keepsPlace.setRetainSizeWhenHidden(true);
    m_button->setSizePolicy(keepsPlace);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, paddingY, 0, paddingY);
    column->setSpacing(usageGap);
    column->addLayout(head);
    column->addWidget(m_usage);
    connect(m_button, &Button::clicked, this, &CommandLineToolView::pressed);
    setInstalled(false);
    setProcessing(false);
}

void CommandLineToolView::setInstalled(bool isInstalled)
{
    m_button->setText(isInstalled ? tr("Uninstall") : tr("Install"));
    m_usage->setVisible(isInstalled);
}

void CommandLineToolView::setProcessing(bool isProcessing)
{
    m_button->setHidden(isProcessing);
    m_progress->setVisible(isProcessing);
}

} // namespace ambertide
