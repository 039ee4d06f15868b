#include "adapters/linux/ToolkitBus.h"

#include "adapters/linux/bus/SdBus.h"

#include <QDBusConnection>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

constexpr auto patience = 500ms;
constexpr char addressVariable[] = "DBUS_SESSION_BUS_ADDRESS";

} // namespace

void keepToolkitOffMuteBus()
{
    const auto bus = openSdBus(SdBusKind::session);
    if (bus && waitUntilReady(bus.get(), std::chrono::steady_clock::now() + patience))
        return;
    const bool isSet = qEnvironmentVariableIsSet(addressVariable);
    const auto address = qgetenv(addressVariable);
    qputenv(addressVariable, "disabled:");
    QDBusConnection::sessionBus(); // the toolkit keeps this connection, which fails, for good
    if (isSet)
        qputenv(addressVariable, address);
    else
        qunsetenv(addressVariable);
}

} // namespace ambertide
