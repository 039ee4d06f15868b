#pragma once

#include "adapters/linux/displays/profiles/ColourProfiles.h"
#include "adapters/linux/displays/randr/RandrConnection.h"

#include <string>
#include <vector>

namespace ambertide {

/// The calibration curves of an X server's displays: those of the default profiles that colord keeps for its outputs.
/// Where there is no colord, or no profile, there are none. A damaged profile is reported in one line. One thread.
class Calibrations
{
public:
    /// Does not wait for the bus.
    Calibrations();
    Calibrations(const Calibrations &) = delete;
    Calibrations &operator=(const Calibrations &) = delete;

    /// Becomes readable when profiles may have changed; -1 where there is no system bus.
    int descriptor() const;
    /// Handles what has arrived, without waiting. True when read() has to be called.
    bool process();
    /// Whether more has arrived during read(), after which process() has to be called.
    bool hasChanged() const { return m_hasChanged; }

    /// Asks for the profiles of these outputs and waits until the deadline at most. An output of which nothing becomes
    /// known by then keeps its curve. True when curves have changed.
    bool read(const std::vector<std::string> &outputs, SdBusDeadline deadline);
    /// Whether the last read() got an answer for each output.
    bool isComplete() const { return m_isComplete; }
    const CalibrationCurves &curves() const { return m_curves; }

private:
    SdBusConnection m_bus; ///< null where there is none
    ColourProfileWatch m_watch;
    bool m_hasChanged = false;
    bool m_isComplete = true;
    CalibrationCurves m_curves;
    std::string m_saidDamaged; ///< the profile that was reported last
};

/// The tables that a display with this calibration curve has to be given to show `tables`.
GammaTables calibrated(const GammaTables &tables, const GammaTables &curve);

} // namespace ambertide
