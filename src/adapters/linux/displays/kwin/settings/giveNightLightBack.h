#pragma once

#include "adapters/linux/displays/kwin/settings/NightLightLoan.h"

#include <functional>

namespace ambertide {

/// Kelvin; KWin makes no change that is not larger.
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

/// How KWin is told and asked, by whoever has a bus.
struct NightLightAccess
{
    /// Has it read its settings anew.
    std::function<void()> announce;
    /// After all that was announced before, `isRunning` and `temperature` at least; nothing when it does not answer.
    std::function<std::optional<NightLightState>()> state;
};

/// Gives the loan back and has KWin follow. KWin makes no change of 50 K or less, so a tint that has only just begun
/// would stay: it is sent further away for a moment then, so that it can come back.
NightLightLoan::End giveNightLightBack(NightLightLoan &loan, std::chrono::milliseconds patience,
                                       const NightLightAccess &kwin);

} // namespace ambertide
