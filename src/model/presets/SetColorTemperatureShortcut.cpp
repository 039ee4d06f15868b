#include "model/presets/SetColorTemperatureShortcut.h"

#include "ports/DistributedNotificationCenter.h"
#include "ports/UserDefaults.h"
#include "protocol/DefaultsKeys.h"
#include "protocol/Notifications.h"

#include <QCoreApplication>

namespace ambertide {

namespace {

/// The translated text, with the preset in place of %1 and the application's name in place of %2.
std::string phrase(const char *text, ColorTemperature preset, std::string_view applicationName = {})
{
    const auto name = QString::fromUtf8(applicationName.data(), static_cast<qsizetype>(applicationName.size()));
    return QCoreApplication::translate("ambertide::SetColorTemperatureShortcut", text)
        .replace(QStringLiteral("%1"), QString::fromStdString(displayRepresentation(preset)))
        .replace(QStringLiteral("%2"), name)
        .toStdString();
}

} // namespace

std::string SetColorTemperatureShortcut::title()
{
    return QCoreApplication::translate("ambertide::SetColorTemperatureShortcut", "Set Color Temperature").toStdString();
}

void SetColorTemperatureShortcut::perform(UserDefaults &userDefaults,
                                          DistributedNotificationCenter &notifications) const
{
    const auto kelvin = rawValue(temperature);
    userDefaults.setInteger(defaults::temperature, kelvin);
    notifications.post(notifications::withTemperature(notifications::updateTemperature, kelvin), Delivery::standard);
}

std::string SetColorTemperatureShortcut::parameterSummary() const
{
    return phrase(QT_TRANSLATE_NOOP("ambertide::SetColorTemperatureShortcut", "Set display temperature to %1"),
                  temperature);
}

std::array<std::string, 2> SetColorTemperatureShortcut::phrases(std::string_view applicationName) const
{
    return {phrase(QT_TRANSLATE_NOOP("ambertide::SetColorTemperatureShortcut", "Set display temperature to %1 in %2"),
                   temperature, applicationName),
            phrase(QT_TRANSLATE_NOOP("ambertide::SetColorTemperatureShortcut", "Change %2 temperature to %1"),
                   temperature, applicationName)};
}

} // namespace ambertide
