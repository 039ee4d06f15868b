#pragma once

#include "platform/TemperatureControl.h"

#include <utility>

namespace ambertide {

/// A model of two values, which says more often than it must that it has changed.
class FakeTemperatureControl final : public TemperatureControl
{
public:
    double currentTemperature = 6500;
    bool isScheduleEnabled = true;

    double temperature() const override { return currentTemperature; }
    double minimumTemperature() const override { return 1000; }
    double maximumTemperature() const override { return 6500; }
    bool scheduleEnabled() const override { return isScheduleEnabled; }
    bool acceptsTemperature(double temperature) const override { return temperature >= 1000 && temperature <= 6500; }
    void requestTemperature(double temperature) override
    {
        setScheduleEnabled(false);
        currentTemperature = temperature;
        changed();
    }
    void setScheduleEnabled(bool enabled) override
    {
        changed();
        isScheduleEnabled = enabled;
        changed();
    }
    Observation observe(std::function<void()> observer) override
    {
        changed = std::move(observer);
        return Observation([this] { changed = [] {}; });
    }

    std::function<void()> changed = [] {};
};

} // namespace ambertide
