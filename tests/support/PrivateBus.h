#pragma once

#include <QProcess>
#include <QTemporaryDir>

namespace ambertide {

/// A message bus of the test's own, at the address that the given environment variable has while this lives. It ends
/// with the test, crash included.
class PrivateBus
{
public:
    explicit PrivateBus(const char *addressVariable = "DBUS_SESSION_BUS_ADDRESS");
    ~PrivateBus();

    /// Again at the same address.
    void start();
    void stop();
    /// From then on it takes connections and messages, but answers nothing.
    void freeze();
    void thaw();

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
};

} // namespace ambertide
