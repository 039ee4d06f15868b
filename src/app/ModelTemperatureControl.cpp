#include "app/ModelTemperatureControl.h"

#include "model/AppViewModel.h"

#include <utility>

namespace ambertide {

double ModelTemperatureControl::temperature() const { return m_model.temperature(); }

double ModelTemperatureControl::minimumTemperature() const { return AppViewModel::minTemperature; }

double ModelTemperatureControl::maximumTemperature() const { return AppViewModel::maxTemperature; }

bool ModelTemperatureControl::scheduleEnabled() const { return m_model.scheduleEnabled(); }

bool ModelTemperatureControl::acceptsTemperature(double temperature) const
{
    return AppViewModel::acceptsRequest(temperature);
}

void ModelTemperatureControl::requestTemperature(double temperature) { m_model.requestTemperature(temperature); }

void ModelTemperatureControl::setScheduleEnabled(bool enabled) { m_model.setScheduleEnabled(enabled); }

Observation ModelTemperatureControl::observe(std::function<void()> changed)
{
    const auto connection = QObject::connect(&m_model, &AppViewModel::changed, &m_model, std::move(changed));
    return Observation([connection] { QObject::disconnect(connection); });
}

} // namespace ambertide
