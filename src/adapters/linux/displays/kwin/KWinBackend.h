#pragma once

#include "adapters/linux/displays/kwin/NightLightService.h"
#include "adapters/linux/displays/kwin/settings/NightLightLoan.h"
#include "adapters/linux/displays/shared/DisplayBackend.h"
#include "adapters/linux/displays/shared/GuardianProcess.h"

#include <filesystem>
#include <optional>
#include <string>

namespace ambertide {

/// The displays of Plasma on Wayland. KWin lets no program set gamma tables, but has a Night Light of its own, which is
/// borrowed from the user and set to the temperature nearest to the tables' white point. KWin makes the ramp by itself,
/// in 2 s, on all displays, new ones included; each request begins it anew, so there is at most one a second, and the
/// last one always comes.
///
/// KWin makes no change of 50 K or less: for those it is sent some way in the other direction first.
///
/// While Night Light is suspended, or once somebody else has changed its settings, that is said in a line and nothing
/// more is written until another target is wanted. Settings of others are never put back or written over then.
///
/// While a tint is on, a process of its own stands by to give the settings back; the end of this object has it do so if
/// restore() has not been called. KWin then takes its two seconds: the only faster way, its preview, would show a
/// message on the screen.
class KWinBackend final : public DisplayBackend
{
public:
    /// Why it cannot serve, a sentence for a person; empty when it can.
    static std::string refusal();

    /// Gives back what a copy that was killed, or the power's end, has left borrowed. `guardian` is the guardian's
    /// file.
    explicit KWinBackend(const std::filesystem::path &guardian);

    bool makesOwnRamps() const override { return true; }
    std::span<const DisplayIdentifier> displays() const override { return {}; }
    bool write(std::span<const DisplayIdentifier> displays, const GammaTables &tables, Wait wait) override;
    void restore() override;
    int descriptor() const override { return m_service.descriptor(); }
    std::optional<Clock::time_point> due() const override;
    bool process() override;
    std::optional<TintRefusal> tintRefusal() const override { return m_refusal; }
    GuardianProcess *guardian() override { return &m_guardian; }

private:
    void request(int temperature);
    int stepTowards(int temperature);
    void checkArrival();
    void giveBack();
    void forget();
    void noteInhibition(bool isInhibited);

    NightLightService m_service;
    GuardianProcess m_guardian; ///< ends after the loan, which it may have to end
    NightLightLoan m_loan;
    std::optional<int> m_wanted; ///< not yet requested
    int m_requested = 0;
    bool m_mayDetour = false;
    Clock::time_point m_earliestRequest{};
    std::optional<Clock::time_point> m_arrival; ///< KWin's ramp is over by then
    std::optional<TintRefusal> m_refusal;
};

} // namespace ambertide
