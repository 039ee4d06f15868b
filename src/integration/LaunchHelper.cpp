#include "integration/LaunchHelper.h"

#include "base/Console.h"
#include "ports/LoginItem.h"

#include <cassert>
#include <optional>
#include <string>

namespace ambertide {

namespace {

LaunchHelper *sharedHelper = nullptr;

} // namespace

LaunchHelper::LaunchHelper(LoginItem &loginItem) : m_loginItem(loginItem) {}

void LaunchHelper::makeShared(LoginItem &loginItem)
{
    assert(sharedHelper == nullptr);
    sharedHelper = new LaunchHelper(loginItem);
}

LaunchHelper &LaunchHelper::shared()
{
    assert(sharedHelper != nullptr);
    return *sharedHelper;
}

bool LaunchHelper::isLaunchAtLoginEnabled() const { return m_loginItem.status() == LoginItemStatus::Enabled; }

void LaunchHelper::setLaunchAtLogin(bool enabled)
{
    std::optional<std::string> failure;
    if (!enabled || isLaunchAtLoginEnabled())
        failure = m_loginItem.unregisterItem();
    if (enabled && !failure)
        failure = m_loginItem.registerItem();
    if (failure)
        console::print("Failed to " + std::string(enabled ? "enable" : "disable") + " launch at login: " + *failure);
}

} // namespace ambertide
