#include "ui/settings/ScheduleSettingsView.h"

#include "ui/controls/Button.h"
#include "ui/controls/Card.h"
#include "ui/controls/Drawing.h"
#include "ui/controls/Sheet.h"
#include "ui/controls/SwitchRow.h"
#include "ui/settings/ScheduleEntryEditor.h"
#include "ui/settings/ScheduleEntryRow.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLocale>
#include <QTime>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

constexpr int padding = 20;
constexpr int topPadding = 6;
constexpr int gap = 8;
constexpr int headerInset = 4;
constexpr int gapAboveHeader = 10;
constexpr int rowPaddingX = 14;
constexpr int rowPaddingY = 10;
constexpr int highlightInset = 4;
constexpr int plusSize = 14;
constexpr double temperatureOfNewEntry = 3800; // K
constexpr QSize editorSize(400, 300);
constexpr std::size_t rowBatch = 50;

QString shownTime(const Calendar &calendar, const ScheduleEntry &entry)
{
    const auto time = calendar.timeOfDay(entry.time);
    return QLocale().toString(QTime(time.hour.value_or(0), time.minute.value_or(0)), QStringLiteral("h:mm Ap"));
}

} // namespace

ScheduleSettingsView::ScheduleSettingsView(SettingsViewModel &viewModel, const Calendar &calendar)
    : m_viewModel(viewModel), m_calendar(calendar), m_currentTime(calendar.now()), m_timer(this), m_rowLimit(rowBatch),
      m_scheduleEnabled(new SwitchRow(tr("Enable Schedule"), SwitchRow::Kind::Form)), m_list(new Card),
      m_emptyText(
          new TextLabel(tr("No schedule entries. Add one to get started."), TextStyle::Body, &Theme::secondaryText)),
      m_add(new Button(tr("Add Schedule Entry"), {.kind = Button::Kind::Row,
                                                  .symbol = symbols::plus,
                                                  .symbolSize = plusSize,
                                                  .paddingX = rowPaddingX,
                                                  .paddingY = rowPaddingY,
                                                  .highlightInset = highlightInset,
                                                  .ink = &Theme::accentText}))
{
    m_emptyText->setWordWrap(true);
    m_emptyText->setContentsMargins(rowPaddingX, rowPaddingY, rowPaddingX, rowPaddingY);
    auto *header = new TextLabel(tr("Schedule"), TextStyle::Headline);
    header->setContentsMargins(headerInset, gapAboveHeader, headerInset, 0);
    auto *top = new Card;
    top->addRow(m_scheduleEnabled);
    m_list->addRow(m_emptyText);
    m_list->addRow(m_add);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(padding, topPadding, padding, padding);
    column->setSpacing(gap);
    column->addWidget(top);
    column->addWidget(header);
    column->addWidget(m_list);
    column->addStretch();

    m_timer.setInterval(60s);
    connect(&m_timer, &QTimer::timeout, this, &ScheduleSettingsView::setCurrentTime);
    m_scheduleEnabled->setChecked(m_viewModel.scheduleEnabled());
    connect(m_scheduleEnabled, &SwitchRow::toggled, &m_viewModel, &SettingsViewModel::updateScheduleEnabled);
    connect(m_add, &Button::clicked, this, &ScheduleSettingsView::add);
    connect(&m_viewModel, &SettingsViewModel::changed, this, &ScheduleSettingsView::refresh);
    m_entries = m_viewModel.scheduleEntries();
    showEntries();
}

void ScheduleSettingsView::showEvent(QShowEvent *)
{
    m_timer.start();
    setCurrentTime();
}

void ScheduleSettingsView::hideEvent(QHideEvent *) { m_timer.stop(); }

void ScheduleSettingsView::setCurrentTime()
{
    m_currentTime = m_calendar.now();
    showEntries();
}

void ScheduleSettingsView::refresh()
{
    m_scheduleEnabled->setChecked(m_viewModel.scheduleEnabled());
    if (m_entries == m_viewModel.scheduleEntries())
        return;
    m_entries = m_viewModel.scheduleEntries();
    showEntries();
}

void ScheduleSettingsView::showEntries()
{
    const auto active = m_viewModel.activeEntry(m_currentTime);
    const auto count = std::min(m_entries.size(), m_rowLimit);
    while (m_rows.size() < count)
        addRow();
    for (; m_rows.size() > count; m_rows.pop_back()) {
        // Later, since this may run inside a signal of one of the row's own buttons.
        m_rows.back()->hide();
        m_rows.back()->deleteLater();
    }
    for (std::size_t index = 0; index < count; ++index) {
        const auto &entry = m_entries.at(index);
        m_rows.at(index)->setEntry(entry, shownTime(m_calendar, entry), entry.isEnabled && entry.id == active);
    }
    m_emptyText->setVisible(m_entries.empty());
}

void ScheduleSettingsView::addRow()
{
    auto *row = new ScheduleEntryRow;
    connect(row, &ScheduleEntryRow::editRequested, this, [this, row] { edit(row->entry()); });
    connect(row, &ScheduleEntryRow::deleteRequested, this, [this, row] { remove(row->entry().id); });
    m_list->insertRow(static_cast<int>(m_rows.size()), row);
    m_rows.push_back(row);
    // Screen readers and Tab follow the order of creation: the button has to come after the new row again.
    m_add->raise();
    setTabOrder(row->lastInTabOrder(), m_add);
}

// This is painted when it is shown and as it is scrolled. Rows are created as the end of the list comes near, so that a
// schedule of any length opens at once.
void ScheduleSettingsView::paintEvent(QPaintEvent *)
{
    const QRect seen = visibleRegion().boundingRect();
    if (m_rows.size() < m_entries.size() && seen.bottom() > height() - 2 * seen.height())
        QTimer::singleShot(0, this, &ScheduleSettingsView::showMoreRows);
}

void ScheduleSettingsView::showMoreRows()
{
    m_rowLimit = m_rows.size() + rowBatch;
    showEntries();
}

void ScheduleSettingsView::keyPressEvent(QKeyEvent *event)
{
    const bool isDown = event->key() == Qt::Key_Down;
    const auto focused = std::ranges::find_if(m_rows, [](const auto *row) { return row->hasFocus(); });
    if (focused == m_rows.end() || (!isDown && event->key() != Qt::Key_Up))
        return QWidget::keyPressEvent(event);
    if (isDown && focused + 1 == m_rows.end())
        m_add->setFocus(Qt::TabFocusReason);
    else if (isDown || focused != m_rows.begin())
        (isDown ? *(focused + 1) : *(focused - 1))->setFocus(isDown ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

void ScheduleSettingsView::add()
{
    m_viewModel.addScheduleEntry(temperatureOfNewEntry);
    if (!m_viewModel.scheduleEntries().empty())
        edit(m_viewModel.scheduleEntries().back());
}

void ScheduleSettingsView::edit(const ScheduleEntry &entry)
{
    if (isEditing())
        return;
    auto *editor = new ScheduleEntryEditor(
        entry,
        {SettingsViewModel::temperatureStep, SettingsViewModel::minTemperature, SettingsViewModel::maxTemperature},
        m_calendar);
    m_editor = new Sheet(*window(), editor, editorSize, tr("Edit Schedule Entry"));
    connect(editor, &ScheduleEntryEditor::saved, this, [this](const ScheduleEntry &edited) {
        m_viewModel.updateScheduleEntry(edited);
        endEditing();
        followEntry(edited.id);
    });
    connect(editor, &ScheduleEntryEditor::cancelled, this, &ScheduleSettingsView::endEditing);
    connect(m_editor, &Sheet::cancelled, this, &ScheduleSettingsView::endEditing);
}

void ScheduleSettingsView::endEditing()
{
    if (auto *sheet = std::exchange(m_editor, nullptr).data())
        sheet->dismiss();
}

void ScheduleSettingsView::remove(const QUuid &entry)
{
    const auto &entries = m_viewModel.scheduleEntries();
    const auto found = std::ranges::find(entries, entry, &ScheduleEntry::id);
    if (found == entries.end())
        return;
    const bool wasFocusOnRow = isFocusOnRow();
    m_viewModel.deleteScheduleEntry({static_cast<std::size_t>(found - entries.begin())});
    // The row, and the focus with it, now shows the next entry. But if it was the last row, it is gone.
    if (wasFocusOnRow && !isFocusOnRow() && !m_rows.empty())
        m_rows.back()->setFocus(Qt::BacktabFocusReason);
}

bool ScheduleSettingsView::isFocusOnRow() const
{
    const auto *focused = QApplication::focusWidget();
    return std::ranges::any_of(m_rows, [&](auto *row) { return row == focused || row->isAncestorOf(focused); });
}

void ScheduleSettingsView::followEntry(const QUuid &entry)
{
    const auto row = std::ranges::find(m_rows, entry, [](const auto *candidate) { return candidate->entry().id; });
    if (isFocusOnRow() && row != m_rows.end() && !(*row)->isAncestorOf(QApplication::focusWidget()))
        (*row)->setFocus(Qt::OtherFocusReason);
}

} // namespace ambertide
