#pragma once

#include "ports/UpdateInstaller.h"

namespace ambertide {

// How an installation ended, as the exit status of the helper. All but success differ from pkexec's own statuses and
// from those with which programs commonly fail.

inline constexpr int firstInstallationStatus = 10;

constexpr int installationStatus(UpdateInstaller::Outcome outcome)
{
    return outcome == UpdateInstaller::Outcome::Installed ? 0 : firstInstallationStatus + static_cast<int>(outcome);
}

constexpr UpdateInstaller::Outcome installationOutcome(int status)
{
    const auto outcome = static_cast<UpdateInstaller::Outcome>(status == 0 ? 0 : status - firstInstallationStatus);
    const bool isKnown = outcome >= UpdateInstaller::Outcome::Installed && outcome <= UpdateInstaller::Outcome::Failed;
    return isKnown ? outcome : UpdateInstaller::Outcome::Failed;
}

} // namespace ambertide
