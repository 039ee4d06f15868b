#include "model/presets/SetColorTemperatureShortcut.h"

#include "ports/DistributedNotificationCenter.h"
#include "ports/UserDefaults.h"
#include "protocol/DefaultsKeys.h"
#include "protocol/Notifications.h"

namespace ambertide {

void SetColorTemperatureShortcut::perform(UserDefaults &userDefaults,
                                          DistributedNotificationCenter &notifications) const
{
    const auto kelvin = rawValue(temperature);
    userDefaults.setInteger(defaults::temperature, kelvin);
    notifications.post(notifications::withTemperature(notifications::updateTemperature, kelvin), Delivery::standard);
}

std::string SetColorTemperatureShortcut::parameterSummary() const
{
    return "Set display temperature to " + displayRepresentation(temperature);
}

std::array<std::string, 2> SetColorTemperatureShortcut::phrases(std::string_view applicationName) const
{
    const std::string application(applicationName);
    const auto &value = displayRepresentation(temperature);
    return {"Set display temperature to " + value + " in " + application,
            "Change " + application + " temperature to " + value};
}

} // namespace ambertide
