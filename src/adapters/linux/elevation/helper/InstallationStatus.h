#pragma once

namespace ambertide {

/// How an installation ended, as the exit status of the program that does it. They keep clear of pkexec's own and of
/// those that a program which was not written for this ends with.
enum class InstallationStatus {
    Installed = 0,
    Failed = 1,
    WrongUsage = 2,
    BadSignature = 10,
    WrongPackage = 11,
    NotNewer = 12,
    NotAPackage = 13,
    NoRoom = 14,
    Busy = 15,
};

} // namespace ambertide
