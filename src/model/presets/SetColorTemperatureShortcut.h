#pragma once

#include "model/presets/ColorTemperature.h"

#include <array>
#include <string>
#include <string_view>

namespace ambertide {

class DistributedNotificationCenter;
class UserDefaults;

/// The one action that is offered to launchers and shortcuts: sets every display to a preset's temperature. It requests
/// that as any other program would, and does not learn whether it was done.
struct SetColorTemperatureShortcut
{
    /// "Set Color Temperature", in the application's language, like all texts here.
    static std::string title();
    static constexpr std::string_view parameterTitle = "Temperature";

    ColorTemperature temperature = ColorTemperature::k6500;

    /// Stores the temperature, for the application's next start in case it is not running, and posts the request. To be
    /// called on the notification centre's thread.
    void perform(UserDefaults &userDefaults, DistributedNotificationCenter &notifications) const;

    /// "Set display temperature to 3400K (Halogen)".
    std::string parameterSummary() const;

    /// What a person may say to run it, the usual phrase first.
    std::array<std::string, 2> phrases(std::string_view applicationName) const;
};

} // namespace ambertide
