#include "integration/SparkleUpdater.h"

#include <string_view>

namespace ambertide {

namespace {

constexpr std::string_view autoUpdateKey = "Ambertide.AutoUpdate";
constexpr double secondsPerDay = 86400;

} // namespace

SparkleUpdater::SparkleUpdater(const UpdaterControllerFactory &createController, UserDefaults &defaults)
    : m_updaterController(createController()), m_defaults(defaults),
      m_automaticallyChecksForUpdates(defaults.boolValue(autoUpdateKey))
{
    if (!isBuiltIn())
        return;
    m_updaterController->setAutomaticallyChecksForUpdates(m_automaticallyChecksForUpdates);
    m_updaterController->setUpdateCheckInterval(secondsPerDay);
    m_canCheckForUpdates = true;
}

void SparkleUpdater::setAutomaticallyChecksForUpdates(bool isOn)
{
    if (!isBuiltIn())
        return;
    m_observers.notify();
    m_automaticallyChecksForUpdates = isOn;
    m_updaterController->setAutomaticallyChecksForUpdates(isOn);
    m_defaults.setBool(autoUpdateKey, isOn);
}

void SparkleUpdater::checkForUpdates()
{
    if (isBuiltIn())
        m_updaterController->checkForUpdates();
}

} // namespace ambertide
