#pragma once

#include "adapters/linux/displays/kwin/NightLightService.h"
#include "adapters/linux/displays/kwin/settings/NightLightLoan.h"
#include "adapters/linux/displays/shared/DisplayBackend.h"
#include "adapters/linux/displays/shared/GuardianProcess.h"

#include <filesystem>
#include <optional>
#include <string>

namespace ambertide {

/// The displays of Plasma on Wayland. KWin lets no program set gamma tables, but has a Night Light of its own. Its
/// settings are borrowed from the user and set to the temperature nearest to the tables' white point. KWin makes the
/// ramp by itself, in 2 s, on all displays, new ones included. Each request starts that ramp again, so there is at most
/// one request a second; the last one is always made.
///
/// KWin ignores changes of 50 K or less: for those it is first sent some way in the opposite direction.
///
/// While Night Light is suspended, or once somebody else has changed its settings, one line says so and nothing more is
/// written until there is a new target. Until then the settings that somebody else made are neither put back nor
/// overwritten.
///
/// While a tint is on, a guardian process stands by to give the settings back. It also does so when this object is
/// destroyed without a restore(). KWin then takes its two seconds: the only faster way, its preview, would show a
/// message on the screen.
class KWinBackend final : public DisplayBackend
{
public:
    /// Why Plasma's displays cannot be tinted in this session, a phrase for the user; empty when they can. Waits for
    /// KWin, for up to 4 s where a session is still starting.
    static std::string refusal();

    /// Gives back what a killed copy or a power failure has left borrowed. `guardian` is the path of the guardian's
    /// program.
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
    GuardianProcess m_guardian; ///< ends after the loan, which it may then have to give back
    NightLightLoan m_loan;
    std::optional<int> m_wanted; ///< the target, while it has not been requested yet
    int m_requested = 0;
    bool m_mayDetour = false;
    Clock::time_point m_earliestRequest{};
    std::optional<Clock::time_point> m_arrival; ///< when KWin's ramp is over at the latest
    std::optional<TintRefusal> m_refusal;
};

} // namespace ambertide
