#pragma once

#include "adapters/linux/displays/kwin/settings/NightLightLoan.h"

#include <functional>

namespace ambertide {

/// Kelvin; KWin ignores changes that are not larger.
inline constexpr int largestIgnoredChange = 50;
inline constexpr int warmestNightLight = 1000; ///< kelvin
inline constexpr int neutralNightLight = 6500; ///< kelvin; what KWin shows with its Night Light off

struct NightLightState
{
    bool isAvailable = false;
    bool isRunning = false;   ///< switched on and not suspended
    bool isInhibited = false; ///< suspended by the user or by a program
    int temperature = 0;      ///< kelvin; what it shows now
};

/// How to tell KWin something and ask it, with whatever connection to the bus the caller has.
struct NightLightAccess
{
    /// Has KWin read its settings again.
    std::function<void()> announce;
    /// The state after all that was announced before; `isRunning` and `temperature` are filled in at least. Nothing
    /// when KWin does not answer.
    std::function<std::optional<NightLightState>()> state;
};

/// Gives the loan back and has KWin follow. KWin ignores changes of 50 K or less, so a tint that has only just begun
/// would stay: KWin is then sent further away for a moment, so that it can come back.
NightLightLoan::End giveNightLightBack(NightLightLoan &loan, std::chrono::milliseconds patience,
                                       const NightLightAccess &kwin);

} // namespace ambertide
