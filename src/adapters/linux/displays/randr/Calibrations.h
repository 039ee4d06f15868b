#pragma once

#include "adapters/linux/bus/SdBus.h"
#include "adapters/linux/displays/randr/RandrConnection.h"

#include <string>
#include <vector>

namespace ambertide {

/// The calibration curves of an X server's displays: those of the default profiles that colord keeps for its outputs.
/// Where there is no colord, or no profile, there are none. A profile that is damaged is said in one line. One thread.
class Calibrations
{
public:
    /// Does not wait for the bus.
    Calibrations();
    Calibrations(const Calibrations &) = delete;
    Calibrations &operator=(const Calibrations &) = delete;

    /// Becomes readable when there may be other profiles; -1 where nobody tells.
    int descriptor() const;
    /// Takes in what has been told, without waiting. True when read() is to be called.
    bool process();

    /// Asks for the profiles of these outputs, until the deadline at the latest. True when curves have changed.
    bool read(const std::vector<std::string> &outputs, SdBusDeadline deadline);
    const CalibrationCurves &curves() const { return m_curves; }

private:
    SdBusConnection m_bus; ///< null where there is none
    SdBusSlot m_watch;
    bool m_hasChanged = false;
    CalibrationCurves m_curves;
    std::string m_saidDamaged; ///< the file of the last line
};

/// What a display with that curve has to be given to show `tables`.
GammaTables calibrated(const GammaTables &tables, const GammaTables &curve);

} // namespace ambertide
