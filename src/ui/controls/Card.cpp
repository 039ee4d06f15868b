#include "ui/controls/Card.h"

#include "ui/controls/Drawing.h"
#include "ui/controls/Theme.h"

#include <QPainter>
#include <QVBoxLayout>

namespace ambertide {

namespace {

constexpr double cornerRadius = 10;
constexpr int paddingY = 1;

} // namespace

Card::Card(QWidget *parent) : QWidget(parent), m_rows(new QVBoxLayout(this))
{
    m_rows->setContentsMargins(0, paddingY, 0, paddingY);
    m_rows->setSpacing(1);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
}

void Card::addRow(QWidget *row) { m_rows->addWidget(row); }

void Card::insertRow(int index, QWidget *row) { m_rows->insertWidget(index, row); }

void Card::paintEvent(QPaintEvent *)
{
    const auto theme = Theme::of(palette());
    QPainter painter(this);
    fillRounded(painter, onPixels(painter, rect()), cornerRadius, theme.card);
    strokeRounded(painter, rect(), cornerRadius, theme.hairline);
    painter.setRenderHint(QPainter::Antialiasing, false);
    bool isFirst = true;
    for (int index = 0; index < m_rows->count(); ++index) {
        const auto *row = m_rows->itemAt(index)->widget();
        if (row == nullptr || row->isHidden())
            continue;
        if (!isFirst)
            painter.fillRect(QRectF(0, row->y() - 1, width(), hairlineWidth(painter)), theme.hairline);
        isFirst = false;
    }
}

} // namespace ambertide
