#pragma once

#include "ports/TemperatureControl.h"

namespace ambertide {

class AppViewModel;

/// Opens the model to programs outside.
class ModelTemperatureControl final : public TemperatureControl
{
public:
    /// The model must outlive this.
    explicit ModelTemperatureControl(AppViewModel &model) : m_model(model) {}

    double temperature() const override;
    double minimumTemperature() const override;
    double maximumTemperature() const override;
    bool scheduleEnabled() const override;
    bool acceptsTemperature(double temperature) const override;
    void requestTemperature(double temperature) override;
    void setScheduleEnabled(bool enabled) override;
    Observation observe(std::function<void()> changed) override;

private:
    AppViewModel &m_model;
};

} // namespace ambertide
