#include "integration/SparkleUpdater.h"

#include <string_view>
#include <utility>

namespace ambertide {

namespace {

constexpr std::string_view autoUpdateKey = "Ambertide.AutoUpdate";
constexpr double secondsPerDay = 86400;

} // namespace

SparkleUpdater::SparkleUpdater(const UpdaterControllerFactory &createController, UserDefaults &defaults)
    : m_updaterController(createController()), m_defaults(defaults),
      m_automaticallyChecksForUpdates(defaults.boolValue(autoUpdateKey))
{
    m_updaterController->setAutomaticallyChecksForUpdates(m_automaticallyChecksForUpdates);
    m_updaterController->setUpdateCheckInterval(secondsPerDay);
    m_canCheckForUpdates = true;
}

void SparkleUpdater::setAutomaticallyChecksForUpdates(bool isOn)
{
    announceChange();
    m_automaticallyChecksForUpdates = isOn;
    m_updaterController->setAutomaticallyChecksForUpdates(isOn);
    m_defaults.setBool(autoUpdateKey, isOn);
}

Observation SparkleUpdater::observe(std::function<void()> willChange)
{
    const auto observer = m_nextObserver++;
    m_observers.emplace(observer, std::move(willChange));
    return Observation([this, observer] { m_observers.erase(observer); });
}

void SparkleUpdater::announceChange()
{
    const auto observers = m_observers;
    for (const auto &[number, willChange] : observers) {
        if (m_observers.contains(number))
            willChange();
    }
}

} // namespace ambertide
