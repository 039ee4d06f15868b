#pragma once

#include "adapters/linux/displays/kwin/settings/NightLightLoan.h"

#include <functional>

namespace ambertide {

/// How KWin is told and asked, by whoever has a bus.
struct NightLightAccess
{
    struct State
    {
        bool isRunning = false; ///< switched on and not suspended
        int temperature = 0;    ///< kelvin; what it shows now
    };
    /// Has it read its settings anew.
    std::function<void()> announce;
    /// After all that was announced before; nothing when it does not answer.
    std::function<std::optional<State>()> state;
};

/// Gives the loan back and has KWin follow. KWin makes no change of 50 K or less, so a tint that has only just begun
/// would stay: it is sent further away for a moment then, so that it can come back.
NightLightLoan::End giveNightLightBack(NightLightLoan &loan, std::chrono::milliseconds patience,
                                       const NightLightAccess &kwin);

} // namespace ambertide
