#pragma once

#include "model/ScheduleEntry.h"
#include "ui/controls/Button.h"

class QSpacerItem;

namespace ambertide {

/// One entry of the schedule. Pressing the row with the mouse, Return or Space edits the entry, Delete or Backspace
/// deletes it, and there is a button for either.
class ScheduleEntryRow final : public Button
{
    Q_OBJECT

public:
    ScheduleEntryRow();

    const ScheduleEntry &entry() const { return m_entry; }
    /// `time` is the entry's time as it is shown.
    void setEntry(const ScheduleEntry &entry, const QString &time, bool isActive);

    QWidget *lastInTabOrder() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    void editRequested();
    void deleteRequested();

protected:
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    ScheduleEntry m_entry;
    bool m_isActive = false;
    QSpacerItem *m_statusRoom; ///< for the symbol, with which it grows
    TextLabel *m_time = nullptr;
    TextLabel *m_temperature = nullptr;
    TextLabel *m_disabled = nullptr;
    Button *m_edit = nullptr;
    Button *m_delete = nullptr;
};

} // namespace ambertide
