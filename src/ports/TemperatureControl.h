#pragma once

#include "base/Observation.h"

#include <functional>

namespace ambertide {

/// Port: what programs outside may see and change of the running application. Main thread. Temperatures are in kelvin.
class TemperatureControl
{
public:
    virtual ~TemperatureControl() = default;

    virtual double temperature() const = 0;
    virtual double minimumTemperature() const = 0;
    virtual double maximumTemperature() const = 0;
    virtual bool scheduleEnabled() const = 0;

    /// Whether such a request would be taken; false as well for what is no number.
    virtual bool acceptsTemperature(double temperature) const = 0;
    /// Asks as any other program does: what is accepted is rounded, shown and kept, and switches the schedule off. What
    /// is not changes nothing.
    virtual void requestTemperature(double temperature) = 0;
    virtual void setScheduleEnabled(bool enabled) = 0;

    /// Calls `changed` after changes, and perhaps when nothing has changed.
    virtual Observation observe(std::function<void()> changed) = 0;
};

} // namespace ambertide
