#pragma once

#include "model/ScheduleEntry.h"

#include <QWidget>

class QSlider;

namespace ambertide {

class Button;
class SwitchRow;
class TextLabel;
class TimeField;

/// Edits a copy of one entry. All that it does with the result is to emit saved().
class ScheduleEntryEditor final : public QWidget
{
    Q_OBJECT

public:
    struct TemperatureRange ///< kelvin
    {
        double step;
        double min;
        double max;
    };

    /// `calendar` must outlive the editor.
    ScheduleEntryEditor(const ScheduleEntry &entry, const TemperatureRange &range, const Calendar &calendar);

Q_SIGNALS:
    /// Emitted from the event loop, at most once.
    void saved(const ScheduleEntry &entry);
    void cancelled();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void takeTime();
    void save();
    void setTemperature(int kelvin);
    void showTemperature();

    ScheduleEntry m_editedEntry;
    const Calendar &m_calendar;
    bool m_isSaved = false;
    TimeField *m_time = nullptr;
    TextLabel *m_temperatureText = nullptr;
    QSlider *m_temperature = nullptr;
    SwitchRow *m_isEnabled = nullptr;
    Button *m_save = nullptr;
};

} // namespace ambertide
