#pragma once

#include "ports/UpdateInstaller.h"

#include <QProcess>

#include <memory>

namespace ambertide {

/// Hands the package to a helper that polkit's pkexec runs as root: as bytes, so that no file of the user's is read
/// there. Main thread. Destroying it leaves an installation that has begun to itself.
class PkexecUpdateInstaller final : public UpdateInstaller
{
public:
    explicit PkexecUpdateInstaller(std::filesystem::path helper, std::filesystem::path pkexec = "/usr/bin/pkexec");
    ~PkexecUpdateInstaller() override;

    void install(const std::filesystem::path &package, std::string_view signature,
                 std::function<void(Result)> done) override;

private:
    void collectErrors();
    void finish(const Result &result);
    Result resultOfExit(int code) const;

    std::filesystem::path m_helper;
    std::filesystem::path m_pkexec;
    std::unique_ptr<QProcess> m_process;
    QByteArray m_errors;
    std::function<void(Result)> m_done;
};

} // namespace ambertide
