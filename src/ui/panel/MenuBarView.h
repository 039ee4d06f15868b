#pragma once

#include "model/AppViewModel.h"
#include "ports/HapticPerformer.h"

#include <QWidget>

namespace ambertide {

class Button;
class SwitchRow;
class TemperatureSlider;
class TextLabel;

/// The content of the panel: the temperature, its slider, the schedule's switch, and buttons for the settings and for
/// quitting. Main thread. Model and haptics must outlive it.
class MenuBarView final : public QWidget
{
    Q_OBJECT

public:
    MenuBarView(AppViewModel &viewModel, HapticPerformer &haptics);

    /// "Normal (Daylight)" from 6500 K on, else as in "3450K" or "3400K (Halogen)".
    static QString temperatureText(double temperature);
    /// The temperature as above, or why the displays do not show it.
    static QString statusText(const AppViewModel &viewModel);

    /// A sentence below everything else; empty for none.
    void setFootnote(const QString &text);

Q_SIGNALS:
    void settingsRequested();
    void scheduleRequested();
    void quitRequested();

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    static QString getTemperatureDescription(double temperature);
    static QString refusalText(const std::optional<TintRefusal> &refusal);
    QLayout *header();
    QLayout *sliderBlock();
    void handleEditing(bool isEditing);
    void follow();
    void showTemperature();
    void showNotices();
    void takePlace();
    void fitWidth();

    AppViewModel &m_viewModel;
    HapticPerformer &m_haptics;
    bool m_isDragging = false;
    bool m_scheduleEnabled; ///< as shown
    double m_temperature;   ///< as shown, in kelvin
    TextLabel *m_title = nullptr;
    TextLabel *m_temperatureLabel = nullptr;
    TemperatureSlider *m_slider = nullptr;
    TextLabel *m_refusal = nullptr;
    SwitchRow *m_schedule = nullptr;
    Button *m_nothingScheduled = nullptr;
    TextLabel *m_footnote = nullptr;
};

} // namespace ambertide
