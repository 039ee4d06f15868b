#pragma once

#include "model/SettingsViewModel.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <vector>

namespace ambertide {

class Button;
class Card;
class ScheduleEntryRow;
class Sheet;
class SwitchRow;
class TextLabel;

/// The Schedule tab: switches the schedule, lists its entries with a mark at the one in force, and edits them on a
/// sheet over the window.
class ScheduleSettingsView final : public QWidget
{
    Q_OBJECT

public:
    /// Both must outlive the tab.
    ScheduleSettingsView(SettingsViewModel &viewModel, const Calendar &calendar);

    /// Whether the sheet is open.
    bool isEditing() const { return !m_editor.isNull(); }

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void refresh();
    void showEntries();
    void addRow();
    void showMoreRows();
    void setCurrentTime();
    void add();
    void edit(const ScheduleEntry &entry);
    void endEditing();
    void remove(const QUuid &entry);
    bool isFocusOnRow() const;
    /// After an edit that may have moved the entry to another row: moves the focus there if it was on a row.
    void followEntry(const QUuid &entry);

    SettingsViewModel &m_viewModel;
    const Calendar &m_calendar;
    Date m_currentTime;
    QTimer m_timer;                       ///< runs while the tab is on screen
    std::vector<ScheduleEntry> m_entries; ///< as shown
    std::size_t m_rowLimit;
    std::vector<ScheduleEntryRow *> m_rows; ///< of the first entries, in their order
    QPointer<Sheet> m_editor;
    SwitchRow *m_scheduleEnabled = nullptr;
    Card *m_list = nullptr;
    TextLabel *m_emptyText = nullptr;
    Button *m_add = nullptr;
};

} // namespace ambertide
