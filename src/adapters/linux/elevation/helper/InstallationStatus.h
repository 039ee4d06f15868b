#pragma once

#include "ports/UpdateInstaller.h"

namespace ambertide {

// How an installation ended, as the exit status of the program that does it. All but success keep clear of pkexec's own
// and of those that a program which was not written for this ends with.

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
