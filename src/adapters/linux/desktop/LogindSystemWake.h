#pragma once

#include "adapters/linux/bus/DBusSession.h"
#include "base/Observers.h"
#include "ports/SystemWake.h"

#include <QTimer>

#include <array>

namespace ambertide {

/// Wake-ups as systemd-logind and its replacements announce them on the system bus (signal PrepareForSleep).
class LogindSystemWake final : public SystemWake
{
public:
    /// `systemBus` must outlive this.
    explicit LogindSystemWake(DBusSession &systemBus);
    LogindSystemWake(const LogindSystemWake &) = delete;
    LogindSystemWake &operator=(const LogindSystemWake &) = delete;

    Observation observe(std::function<void()> handler) override;

private:
    void tell();

    Observers<> m_observers;
    std::array<QTimer, 2> m_later;
    Observation m_match;
};

} // namespace ambertide
