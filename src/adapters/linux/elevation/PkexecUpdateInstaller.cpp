#include "adapters/linux/elevation/PkexecUpdateInstaller.h"

#include <QProcessEnvironment>

#include <utility>

namespace ambertide {

namespace {

constexpr qsizetype mostErrorBytes = 4096;
// pkexec's own statuses; the helper ends with others.
constexpr int dismissed = 126;
constexpr int notAuthorised = 127;

QString text(const std::filesystem::path &path) { return QString::fromStdString(path.string()); }

/// pkexec refuses to run under variables that it finds strange, so it is told of none.
QProcessEnvironment plainEnvironment()
{
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), QStringLiteral("/usr/bin:/bin"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    return environment;
}

} // namespace

PkexecUpdateInstaller::PkexecUpdateInstaller(std::filesystem::path helper, std::filesystem::path pkexec)
    : m_helper(std::move(helper)), m_pkexec(std::move(pkexec))
{
}

PkexecUpdateInstaller::~PkexecUpdateInstaller()
{
    if (!m_process || m_process->state() == QProcess::NotRunning)
        return;
    // A QProcess that is destroyed kills its program or waits for it, in the middle of an installation. This one stays
    // until its program has ended.
    auto *process = m_process.release();
    process->disconnect();
    QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
}

void PkexecUpdateInstaller::install(const std::filesystem::path &package, std::string_view signature,
                                    std::function<void(Result)> done)
{
    m_done = std::move(done);
    m_errors.clear();
    m_process = std::make_unique<QProcess>();
    m_process->setProcessEnvironment(plainEnvironment());
    m_process->setStandardInputFile(text(package));
    m_process->setStandardOutputFile(QProcess::nullDevice());
    QObject::connect(m_process.get(), &QProcess::readyReadStandardError, m_process.get(), [this] { collectErrors(); });
    QObject::connect(
        m_process.get(), &QProcess::finished, m_process.get(),
        [this](int code, QProcess::ExitStatus status) {
            collectErrors();
            finish(status == QProcess::NormalExit ? resultOfExit(code)
                                                  : Result{Outcome::Failed, "the installation was broken off"});
        },
        Qt::QueuedConnection);
    QObject::connect(
        m_process.get(), &QProcess::errorOccurred, m_process.get(),
        [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                finish({Outcome::NotAuthorised, "pkexec, which asks for administrator rights, could not be started"});
        },
        Qt::QueuedConnection);
    m_process->start(text(m_pkexec), {QStringLiteral("--disable-internal-agent"), text(m_helper),
                                      QString::fromUtf8(signature.data(), static_cast<qsizetype>(signature.size()))});
}

void PkexecUpdateInstaller::collectErrors()
{
    m_errors.append(m_process->readAllStandardError());
    m_errors.truncate(mostErrorBytes);
}

void PkexecUpdateInstaller::finish(const Result &result)
{
    if (const auto done = std::exchange(m_done, {}))
        done(result);
}

UpdateInstaller::Result PkexecUpdateInstaller::resultOfExit(int code) const
{
    if (code == 0)
        return {Outcome::Installed, {}};
    if (code == dismissed)
        return {Outcome::Dismissed, {}};
    const std::string firstLine = m_errors.trimmed().split('\n').constFirst().toStdString();
    return {code == notAuthorised ? Outcome::NotAuthorised : Outcome::Failed,
            firstLine.empty() ? "the installer ended with status " + std::to_string(code) : firstLine};
}

} // namespace ambertide
